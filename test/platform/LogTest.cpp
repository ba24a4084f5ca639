#include "platform/mox/Log.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

std::vector<std::pair<int, std::string>> systemLog;

void logged(int priority, char const* format, va_list arguments) {
  char text[1000];
  std::vsnprintf(text, sizeof text, format, arguments);
  systemLog.emplace_back(priority, text);
}

}  // namespace

/// Stand in for the C library's, the plain one and the one that checked builds call: the tests
/// leave the machine's log alone.
extern "C" [[gnu::visibility("default")]] void syslog(int priority, char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  logged(priority, format, arguments);
  va_end(arguments);
}
extern "C" [[gnu::visibility("default")]] void __syslog_chk(int priority, int /*flag*/,
                                                            char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  logged(priority, format, arguments);
  va_end(arguments);
}

namespace Mox {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

std::vector<std::pair<LogHandle const*, std::string>> sunk;

void sink(LogHandle const& message, String8 const& text) {
  sunk.emplace_back(&message, text.view());
}

LogHandle handle(char const* format) {
  return {"TEST_MESSAGE", 3, format, "Explanation.", NoActionRequired, 1.5, 2.5, 7};
}

class LogTest : public ::testing::Test {
 protected:
  LogTest() { logSinkIs(sink); }
  ~LogTest() override {
    logSinkIs(nullptr);
    sunk.clear();
    systemLog.clear();
  }

  template <class... Arguments>
  static std::string logged(char const* format, Arguments const&... arguments) {
    log(handle(format), arguments...);
    return sunk.back().second;
  }
};

TEST_F(LogTest, AHandleIsWhatItWasMadeOf) {
  LogHandle const message = handle("text");
  EXPECT_EQ(message.name(), "TEST_MESSAGE");
  EXPECT_EQ(message.severity(), 3U);
  EXPECT_EQ(message.format(), "text");
  EXPECT_EQ(message.explanation(), "Explanation.");
  EXPECT_EQ(message.recommendedAction(), "No action is required.");
  EXPECT_EQ(message.first(), 1.5);
  EXPECT_EQ(message.second(), 2.5);
  EXPECT_EQ(message.flag(), 7);
}

TEST_F(LogTest, PutsTheArgumentsInTheirPlaces) {
  EXPECT_EQ(logged("plain"), "TEST_MESSAGE: plain");
  EXPECT_EQ(logged("%s", "a"), "TEST_MESSAGE: a");
  EXPECT_EQ(logged("device %s is %s.", String8("arad0"), "down"),
            "TEST_MESSAGE: device arad0 is down.");
}

TEST_F(LogTest, AnArgumentIsNoFormat) {
  EXPECT_EQ(logged("%s and %s", "%s", "%d"), "TEST_MESSAGE: %s and %d");
  EXPECT_EQ(logged("%d %% %s", "a"), "TEST_MESSAGE: %d %% a");
}

TEST_F(LogTest, LosesNeitherPlacesNorArgumentsThatLackTheOther) {
  EXPECT_EQ(logged("%s is %s", "a"), "TEST_MESSAGE: a is %s");
  EXPECT_EQ(logged("only %s.", "a", "b", "c"), "TEST_MESSAGE: only a. b c");
  EXPECT_EQ(logged("", "a"), "TEST_MESSAGE:  a");
}

TEST_F(LogTest, TheSinkReceivesTheMessageToo) {
  LogHandle const message = handle("%s");
  log(message, "a");
  EXPECT_THAT(sunk, ElementsAre(Pair(&message, "TEST_MESSAGE: a")));
  EXPECT_TRUE(systemLog.empty());
}

/// Standard error, led elsewhere while this lives.
class StandardErrorTo {
 public:
  explicit StandardErrorTo(int fd) : saved_(dup(STDERR_FILENO)) { dup2(fd, STDERR_FILENO); }
  ~StandardErrorTo() {
    dup2(saved_, STDERR_FILENO);
    close(saved_);
  }

 private:
  int saved_;
};

TEST_F(LogTest, TheDefaultSinkIsTheSystemLogAlone) {
  logSinkIs(nullptr);
  ::testing::internal::CaptureStderr();
  log(handle("100% of %s"), "a");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_THAT(systemLog, ElementsAre(Pair(LOG_ERR, "TEST_MESSAGE: 100% of a")));
}

TEST_F(LogTest, TheDefaultSinkWritesToATerminalAsWell) {
  logSinkIs(nullptr);
  int const terminal = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_GE(terminal, 0);
  ASSERT_EQ(grantpt(terminal), 0);
  ASSERT_EQ(unlockpt(terminal), 0);
  int const programSide = open(ptsname(terminal), O_RDWR | O_NOCTTY);
  ASSERT_GE(programSide, 0);
  {
    StandardErrorTo const redirected(programSide);
    log(handle("%s"), "a");
  }
  close(programSide);
  std::string seen;
  char byte;
  while (read(terminal, &byte, 1) == 1) seen += byte;  // fails after the last
  close(terminal);
  EXPECT_EQ(seen, "TEST_MESSAGE: a\r\n");
  EXPECT_THAT(systemLog, ElementsAre(Pair(LOG_ERR, "TEST_MESSAGE: a")));
}

}  // namespace
}  // namespace Mox
