#include "model/DeviceState.h"

#include <gtest/gtest.h>

#include <sstream>

#include "test/support/Refusal.h"

namespace Hardware::Kest::Slice {
namespace {

using Test::refusal;

struct Named {
  DeviceState state;
  unsigned number;
  char const* name;
};
constexpr Named allStates[] = {
    {DeviceState::deviceStateUnknown_, 0, "deviceStateUnknown"},
    {DeviceState::deviceStateUp_, 1, "deviceStateUp"},
    {DeviceState::deviceStateDown_, 2, "deviceStateDown"},
};

TEST(DeviceState, IsA32BitNumberThatIsUnknownByDefault) {
  static_assert(sizeof(DeviceState) == 4);
  EXPECT_EQ(DeviceState(), DeviceState::deviceStateUnknown_);
}

TEST(DeviceState, EveryEnumeratorHasItsNumberNameAndText) {
  for (Named const& one : allStates) {
    EXPECT_EQ(DeviceStateInstance(one.number), one.state);
    EXPECT_EQ(static_cast<unsigned>(one.state), one.number);
    EXPECT_EQ(DeviceStateInstance(Mox::String8(one.name)), one.state);
    EXPECT_EQ(stringValue(one.state), one.name);
    Mox::String8 const quoted(std::string("'") + one.name + "'");
    EXPECT_EQ(valueToStrep(one.state), quoted);
    EXPECT_EQ(Mox::strepToValue<DeviceState>(quoted), one.state);
    std::ostringstream stream;
    stream << one.state;
    EXPECT_EQ(stream.str(), one.name);
  }
}

TEST(DeviceState, AnyOtherNumberPrintsAsItself) {
  EXPECT_EQ(stringValue(static_cast<DeviceState>(3)), "DeviceState(3)");
  EXPECT_EQ(stringValue(static_cast<DeviceState>(7)), "DeviceState(7)");
  EXPECT_EQ(stringValue(static_cast<DeviceState>(-1)), "DeviceState(-1)");
  EXPECT_EQ(valueToStrep(static_cast<DeviceState>(7)), "'DeviceState(7)'");
}

TEST(DeviceState, OtherNumbersAreRefused) {
  for (unsigned const number : {3U, 4U, 0x7fffffffU, 0xffffffffU}) {
    EXPECT_EQ(refusal([&] { DeviceStateInstance(number); }), "DeviceState") << number;
  }
}

TEST(DeviceState, NamesAreComparedWholeAndByCase) {
  for (std::string_view const name :
       {std::string_view(""), std::string_view("DeviceStateUp"), std::string_view("deviceStateU"),
        std::string_view("deviceStateUp_"), std::string_view("deviceStateUp "),
        std::string_view("deviceStateUp\0", 14), std::string_view("DeviceState(3)")}) {
    EXPECT_EQ(refusal([&] { DeviceStateInstance(Mox::String8(name)); }), "DeviceState") << name;
  }
}

TEST(DeviceState, AReadNameThatIsNoneIsRefusedAsAWhole) {
  Mox::String8 const text("  'deviceStateSideways'");
  Mox::String8::IteratorConst it = text.begin();
  EXPECT_EQ(refusal([&] { sequenceToValue(it, text.end(), static_cast<DeviceState*>(nullptr)); }),
            "DeviceState");
  EXPECT_EQ(it.pos(), 2U);
}

TEST(DeviceState, ReadingInASequenceStopsAfterTheValue) {
  Mox::String8 const text(" 'deviceStateUp' 'deviceStateDown'");
  Mox::String8::IteratorConst it = text.begin();
  EXPECT_EQ(sequenceToValue(it, text.end(), static_cast<DeviceState*>(nullptr)),
            DeviceState::deviceStateUp_);
  EXPECT_EQ(it.pos(), 16U);
}

TEST(DeviceState, TrailingTextIsRefusedWithItsColumn) {
  EXPECT_EQ(refusal([] { Mox::strepToValue<DeviceState>("'deviceStateDown' x"); }),
            "junk at column 17 deserializing 'deviceStateDown' x");
}

}  // namespace
}  // namespace Hardware::Kest::Slice
