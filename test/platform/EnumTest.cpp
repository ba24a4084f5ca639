#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <sstream>

#include "platform/bridging/SwitchportMode.h"
#include "platform/hardware/kest/FapType.h"
#include "platform/hardware/kest/SmMode.h"
#include "platform/mox/Strep.h"
#include "test/support/Refusal.h"

namespace {

using Bridging::SwitchportMode;
using Bridging::SwitchportModeInstance;
using Hardware::Kest::FapType;
using Hardware::Kest::FapTypeInstance;
using Hardware::Kest::SmMode;
using Hardware::Kest::SmModeInstance;
using Mox::String8;
using Test::refusal;

/// What one enumeration should be called.
template <class Enum>
struct Expected;

template <>
struct Expected<SwitchportMode> {
  static constexpr char const* type = "SwitchportMode";
  static std::string choices() {
    return "expected 'switchportModeAccess', 'switchportModeTrunk' or 'switchportModeDot1qTunnel'";
  }
  static constexpr std::array names = {"switchportModeAccess", "switchportModeTrunk",
                                       "switchportModeDot1qTunnel"};
  static constexpr std::array values = {SwitchportMode::switchportModeAccess_,
                                        SwitchportMode::switchportModeTrunk_,
                                        SwitchportMode::switchportModeDot1qTunnel_};
  template <class From>
  static SwitchportMode instance(From from) {
    return SwitchportModeInstance(from);
  }
};

template <>
struct Expected<FapType> {
  static constexpr char const* type = "FapType";
  static std::string choices() {
    return "expected 'fapTypeUnknown', 'fapTypeArad' or 'fapTypeAradDual'";
  }
  static constexpr std::array names = {"fapTypeUnknown", "fapTypeArad", "fapTypeAradDual"};
  static constexpr std::array values = {FapType::fapTypeUnknown_, FapType::fapTypeArad_,
                                        FapType::fapTypeAradDual_};
  template <class From>
  static FapType instance(From from) {
    return FapTypeInstance(from);
  }
};

template <>
struct Expected<SmMode> {
  static constexpr char const* type = "SmMode";
  static std::string choices() {
    return "expected 'smModeInitial', 'smModeStandby' or 'smModePolling'";
  }
  static constexpr std::array names = {"smModeInitial", "smModeStandby", "smModePolling"};
  static constexpr std::array values = {SmMode::smModeInitial_, SmMode::smModeStandby_,
                                        SmMode::smModePolling_};
  template <class From>
  static SmMode instance(From from) {
    return SmModeInstance(from);
  }
};

template <class Enum>
class EnumTest : public ::testing::Test {};

using Enums = ::testing::Types<SwitchportMode, FapType, SmMode>;
TYPED_TEST_SUITE(EnumTest, Enums);

TYPED_TEST(EnumTest, EveryEnumeratorIsItsNumberAndItsName) {
  using E = Expected<TypeParam>;
  for (unsigned number = 0; number < E::values.size(); ++number) {
    TypeParam const value = E::values[number];
    String8 const name = E::names[number];
    EXPECT_EQ(static_cast<unsigned>(value), number);
    EXPECT_EQ(stringValue(value), name);
    EXPECT_EQ(E::instance(number), value);
    EXPECT_EQ(E::instance(name), value);
    std::string const quoted = "'" + std::string(name.view()) + "'";
    EXPECT_EQ(valueToStrep(value), quoted.c_str());
    EXPECT_EQ(Mox::strepToValue<TypeParam>(String8(" " + quoted)), value);
    std::ostringstream out;
    out << value;
    EXPECT_EQ(out.str(), name.view());
  }
}

TYPED_TEST(EnumTest, ANumberWithoutEnumeratorPrintsAsItself) {
  std::string const type = Expected<TypeParam>::type;
  EXPECT_EQ(stringValue(static_cast<TypeParam>(3)), (type + "(3)").c_str());
  EXPECT_EQ(stringValue(static_cast<TypeParam>(-1)), (type + "(-1)").c_str());
  EXPECT_EQ(valueToStrep(static_cast<TypeParam>(3)), ("'" + type + "(3)'").c_str());
}

TYPED_TEST(EnumTest, RefusesNumbersAndNamesThatNoEnumeratorHas) {
  using E = Expected<TypeParam>;
  for (unsigned number : {3U, std::numeric_limits<unsigned>::max()}) {
    EXPECT_EQ(refusal([&] { E::instance(number); }), E::type) << number;
  }
  std::string const first = E::names[0];
  for (std::string const& name : {std::string(), first + " ", first + "_", std::string("0")}) {
    EXPECT_EQ(refusal([&] { E::instance(String8(name)); }),
              E::choices() + ", found '" + name + "'");
  }
}

TYPED_TEST(EnumTest, ARefusedTextIsLeftAtItsStartBehindBlanks) {
  String8 const text("x \t'noSuchName'");
  String8::IteratorConst it = text.begin();
  ++it;
  EXPECT_EQ(refusal([&] { sequenceToValue(it, text.end(), static_cast<TypeParam*>(nullptr)); }),
            Expected<TypeParam>::choices() + ", found 'noSuchName'");
  EXPECT_EQ(it.pos(), 3U);
}

}  // namespace
