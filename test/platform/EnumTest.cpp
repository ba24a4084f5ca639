#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/bridging/SwitchportMode.h"
#include "platform/hardware/kest/FapType.h"
#include "platform/hardware/kest/SmMode.h"
#include "platform/mox/Strep.h"
#include "test/support/Refusal.h"

namespace {

using Bridging::SwitchportMode;
using Hardware::Kest::FapType;
using Hardware::Kest::SmMode;
using Mox::String8;
using Test::refusal;

/// What one enumeration should be called.
struct Names {
  std::string type;
  std::vector<String8> enumerators;
  std::string refusal;
};

template <class Enum>
Names const names;
template <>
Names const names<SwitchportMode> = {
    "SwitchportMode",
    {"switchportModeAccess", "switchportModeTrunk", "switchportModeDot1qTunnel"},
    "expected 'switchportModeAccess', 'switchportModeTrunk' or 'switchportModeDot1qTunnel', "
    "found "};
template <>
Names const names<FapType> = {"FapType",
                              {"fapTypeUnknown", "fapTypeArad", "fapTypeAradDual"},
                              "expected 'fapTypeUnknown', 'fapTypeArad' or 'fapTypeAradDual', "
                              "found "};
template <>
Names const names<SmMode> = {
    "SmMode",
    {"smModeInitial", "smModeStandby", "smModePolling"},
    "expected 'smModeInitial', 'smModeStandby' or 'smModePolling', found "};

template <class Enum>
class EnumTest : public ::testing::Test {};

using Enums = ::testing::Types<SwitchportMode, FapType, SmMode>;
TYPED_TEST_SUITE(EnumTest, Enums);

TYPED_TEST(EnumTest, EveryEnumeratorIsItsNumberAndItsName) {
  std::vector<String8> const& all = names<TypeParam>.enumerators;
  EXPECT_EQ(Mox::TypeOf<TypeParam>::type()->enumerators(), all);
  for (std::size_t number = 0; number < all.size(); ++number) {
    auto const value = static_cast<TypeParam>(number);
    std::string const quoted = "'" + std::string(all[number].view()) + "'";
    EXPECT_EQ(stringValue(value), all[number]);
    EXPECT_EQ(::testing::PrintToString(value), all[number].charPtr());
    EXPECT_EQ(valueToStrep(value), quoted.c_str());
    EXPECT_EQ(Mox::strepToValue<TypeParam>(String8(" " + quoted)), value);
  }
}

TYPED_TEST(EnumTest, ANumberWithoutEnumeratorPrintsAsItself) {
  std::string const& type = names<TypeParam>.type;
  EXPECT_EQ(stringValue(static_cast<TypeParam>(3)), (type + "(3)").c_str());
  EXPECT_EQ(stringValue(static_cast<TypeParam>(-1)), (type + "(-1)").c_str());
  EXPECT_EQ(valueToStrep(static_cast<TypeParam>(3)), ("'" + type + "(3)'").c_str());
}

TYPED_TEST(EnumTest, RefusesANameThatNoEnumeratorHasAndLeavesItUnread) {
  std::string const first(names<TypeParam>.enumerators[0].view());
  for (std::string const& name : {std::string(), first + " ", first + "_", std::string("0")}) {
    String8 const text("x \t'" + name + "'");
    String8::IteratorConst it = text.begin();
    ++it;
    EXPECT_EQ(refusal([&] { sequenceToValue(it, text.end(), static_cast<TypeParam*>(nullptr)); }),
              names<TypeParam>.refusal + "'" + name + "'");
    EXPECT_EQ(it.pos(), 3U);
  }
}

}  // namespace
