#include "platform/mox/Trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>

#include "test/support/Refusal.h"

namespace Mox {
namespace {

using Test::refusal;

/// The levels that are on, as in "028".
std::string levels(TraceHandle const& handle) {
  std::string on;
  for (unsigned level = 0; level < 10; ++level) {
    if (handle.enabled(level)) on += std::to_string(level);
  }
  return on;
}

class TraceTest : public ::testing::Test {
 protected:
  TraceTest() { traceStreamIs(&traced); }
  ~TraceTest() override {
    traceSettingIs("*/");
    traceStreamIs(nullptr);
    traceCoverageStreamIs(nullptr);
  }

  std::ostringstream traced;
  TraceHandle slice{"TestSlice"};
  TraceHandle other{"Test"};
};

TEST_F(TraceTest, SettingsSwitchLevelsByFacility) {
  struct {
    char const* setting;
    char const* slice;
    char const* other;
  } const table[] = {
      {"TestSlice/0-28", "0128", ""},
      {"TestSlice/*", "0123456789", ""},
      {"Test*/5", "5", "5"},
      {"*/09", "09", "09"},
      {"Test/3", "", "3"},
      {"TestSlice/1,Test/2-4", "1", "234"},
      {"*/*,TestSlice/", "", "0123456789"},
      {"TestSlice/1,*/7", "7", "7"},
      {"TestSlice/5-5", "5", ""},
      {"TestSlice/0-13-4", "0134", ""},
      {"TestSlice/8118", "18", ""},
      {"testslice/1", "", ""},
      {"Slice*/1", "", ""},
      {"", "", ""},
  };
  for (auto const& row : table) {
    traceSettingIs("*/");
    traceSettingIs(row.setting);
    EXPECT_EQ(levels(slice), row.slice) << row.setting;
    EXPECT_EQ(levels(other), row.other) << row.setting;
    EXPECT_EQ(levels(TraceHandle("TestSlice")), row.slice) << row.setting;
  }
}

TEST_F(TraceTest, ASettingLeavesFacilitiesThatItDoesNotName) {
  traceSettingIs("Test/1,TestSlice/2");
  traceSettingIs("Test/3");
  EXPECT_EQ(levels(slice), "2");
  EXPECT_EQ(levels(other), "3");
}

TEST_F(TraceTest, AMalformedSettingIsRefusedAndChangesNothing) {
  struct {
    char const* setting;
    char const* error;
  } const table[] = {
      {",", "expected a facility at column 0, found ','"},
      {"/1", "expected a facility at column 0, found '/'"},
      {"Test/1,", "expected a facility at column 7, found the end"},
      {"Test/1,,", "expected a facility at column 7, found ','"},
      {"Test", "expected '/' and levels at column 4, found the end"},
      {"Test,TestSlice/1", "expected '/' and levels at column 4, found ','"},
      {"Test/a", "expected a level, 0 to 9 at column 5, found 'a'"},
      {"Test/1 ", "expected a level, 0 to 9 at column 6, found ' '"},
      {"Test/-1", "expected a level, 0 to 9 at column 5, found '-'"},
      {"Test/1-", "expected a level, 1 to 9 at column 7, found the end"},
      {"Test/5-3", "expected a level, 5 to 9 at column 7, found '3'"},
      {"Test/1*", "expected a level, 0 to 9 at column 6, found '*'"},
      {"Test/*1", "expected ',' or the end at column 6, found '1'"},
      {"Test/1/2", "expected a level, 0 to 9 at column 6, found '/'"},
      {"Test/7,TestSlice/x", "expected a level, 0 to 9 at column 17, found 'x'"},
  };
  traceSettingIs("Test/3");
  for (auto const& row : table) {
    EXPECT_EQ(refusal([&] { traceSettingIs(row.setting); }),
              "trace setting '" + std::string(row.setting) + "': " + row.error);
    EXPECT_EQ(levels(other), "3") << row.setting;
  }
}

TEST_F(TraceTest, AnEnabledPointWritesOneLine) {
  traceSettingIs("TestSlice/8");
  traceHelper(slice, "100% et3", 8, "TestSm", 71, "handleIt");
  traceHelper(slice, "not this", 7, "TestSm", 72, "handleIt");
  traceHelper(other, "nor this", 8, "TestSm", 73, "handleIt");
  EXPECT_EQ(traced.str(), "TestSlice 8 TestSm:71 handleIt 100% et3\n");
}

TEST_F(TraceTest, TheCoverageStreamGetsEveryPointReached) {
  std::ostringstream covered;
  traceSettingIs("TestSlice/1");
  traceCoverageStreamIs(&covered);
  EXPECT_EQ(traceCoverageStream(), &covered);
  traceHelper(slice, "one", 1, "TestSm", 1, "a");
  traceHelper(slice, "two", 2, "TestSm", 2, "b");
  EXPECT_EQ(traced.str(), "TestSlice 1 TestSm:1 a one\n");
  EXPECT_EQ(covered.str(), "TestSlice 1 TestSm:1 a one\nTestSlice 2 TestSm:2 b two\n");
}

TEST_F(TraceTest, APointIsWantedWhenItsLevelOrTheCoverageStreamIsOn) {
  EXPECT_FALSE(traceWanted(slice, 1));
  traceSettingIs("TestSlice/1");
  EXPECT_TRUE(traceWanted(slice, 1));
  EXPECT_FALSE(traceWanted(slice, 2));
  std::ostringstream covered;
  traceCoverageStreamIs(&covered);
  EXPECT_TRUE(traceWanted(slice, 2));
}

/// Counts how often what was written is passed on.
class FlushCounter : public std::stringbuf {
 public:
  int sync() override { return ++flushes, 0; }
  int flushes = 0;
};

TEST_F(TraceTest, EachLineIsFlushed) {
  FlushCounter buffer;
  std::ostream stream(&buffer);
  traceStreamIs(&stream);
  traceSettingIs("TestSlice/1");
  traceHelper(slice, "one", 1, "TestSm", 1, "a");
  traceHelper(slice, "two", 1, "TestSm", 2, "b");
  EXPECT_EQ(buffer.flushes, 2);
}

TEST_F(TraceTest, ASettingDoesNotReachHandlesThatAreGone) {
  auto gone = std::make_unique<TraceHandle>("TestSlice");
  gone.reset();
  traceSettingIs("TestSlice/1");
  EXPECT_EQ(levels(slice), "1");
}

TEST_F(TraceTest, StandardErrorIsTheStreamByDefault) {
  traceStreamIs(nullptr);
  traceSettingIs("TestSlice/1");
  ::testing::internal::CaptureStderr();
  traceHelper(slice, "one", 1, "TestSm", 1, "a");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "TestSlice 1 TestSm:1 a one\n");
}

/// Each in a process of its own: the variable is read once.
class TraceVariableDeathTest : public ::testing::Test {
 protected:
  TraceVariableDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
  ~TraceVariableDeathTest() override {
    GTEST_FLAG_SET(death_test_style, "fast");
    unsetenv("MOX_TRACE");
  }

  [[noreturn]] static void reportLevels() {
    std::cerr << levels(TraceHandle("TestSlice")) << ',' << levels(TraceHandle("Test"));
    std::exit(0);
  }
};

TEST_F(TraceVariableDeathTest, SwitchesLevelsFromTheStart) {
  setenv("MOX_TRACE", "TestSlice/0-28,Test/4", 1);
  EXPECT_EXIT(reportLevels(), ::testing::ExitedWithCode(0), ::testing::StrEq("0128,4"));
}

TEST_F(TraceVariableDeathTest, IsReportedOnceAndNotUsedWhenMalformed) {
  setenv("MOX_TRACE", "Test/4,TestSlice", 1);
  EXPECT_EXIT(reportLevels(), ::testing::ExitedWithCode(0),
              ::testing::StrEq("MOX_TRACE is not used: trace setting 'Test/4,TestSlice': expected "
                               "'/' and levels at column 16, found the end\n,"));
}

}  // namespace
}  // namespace Mox
