#include "agent/process/ActivityLoop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "test/agent/support/Pipe.h"
#include "test/platform/Journaled.h"

namespace {

/// While there is one, no wait takes place: it is written down and ends as told.
struct WaitScript {
  std::vector<int> milliseconds;
  int error = 0;
};
WaitScript* waitScript = nullptr;

}  // namespace

/// Stands in for the C library's, so that tests see how long the loop would wait.
extern "C" [[gnu::visibility("default")]] int poll(pollfd* fds, nfds_t count, int milliseconds) {
  if (waitScript == nullptr) {
    timespec const time{milliseconds / 1000, milliseconds % 1000 * 1000000};
    return ppoll(fds, count, milliseconds < 0 ? nullptr : &time, nullptr);
  }
  waitScript->milliseconds.push_back(milliseconds);
  errno = waitScript->error;
  return errno == 0 ? 0 : -1;
}

namespace Kest::Agent {
namespace {

using Mox::Clock;
using Mox::never;
using Mox::Ptr;
using Mox::timeSourceIs;
using Test::Events;
using Test::Pipe;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Alarm : public Clock::NotifieeConst {
 public:
  explicit Alarm(Events& events) : events_(events) {}
  void onTime() override { events_.push_back("alarm"); }

 private:
  Events& events_;
};

/// Time that real time moves, as far as the loop can tell.
class PassingTime : public Mox::TimeSource {
 public:
  Seconds now() const override { return 100; }
  Seconds waitTime(Seconds time) const override { return time - now(); }
};

class ActivityLoopTest : public ::testing::Test {
 protected:
  ActivityLoopTest() { timeSourceIs(&time); }
  ~ActivityLoopTest() override {
    waitScript = nullptr;
    timeSourceIs(nullptr);
  }

  ActivityLoop::Work note(char const* what) {
    return [this, what] { events.push_back(what); };
  }

  Ptr<Alarm> alarmAt(Seconds at) {
    Ptr<Alarm> made(new Alarm(events));
    made->notifierIs(clock);
    made->isRegisteredNotifieeIs(true);
    made->timeMinIs(at);
    return made;
  }

  void watch(Pipe const& pipe, char const* name) {
    loop.fdIs(pipe.reader(), [this, &pipe, name] {
      pipe.read();
      events.push_back(name);
    });
  }

  /// How long a round waits, in milliseconds; -1 is for ever.
  int waitOfRound(Seconds timeout) {
    WaitScript script;
    waitScript = &script;
    loop.runOnce(timeout);
    waitScript = nullptr;
    return script.milliseconds.at(0);
  }

  Mox::ManualTimeSource time;
  Events events;
  Ptr<Clock> clock{new Clock("clock")};
  ActivityLoop loop{clock};
};

TEST_F(ActivityLoopTest, RunsTheWorkOfReadableDescriptorsAlone) {
  Pipe a;
  Pipe b;
  watch(a, "a");
  watch(b, "b");
  loop.runOnce(0);
  EXPECT_THAT(events, IsEmpty());
  b.write();
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("b"));
  a.write();
  b.write();
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("b", "a", "b"));
}

TEST_F(ActivityLoopTest, WhatWorkLeavesUnreadRunsItAgain) {
  Pipe pipe;
  loop.fdIs(pipe.reader(), note("readable"));
  pipe.write();
  loop.runOnce(never);
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("readable", "readable"));
}

TEST_F(ActivityLoopTest, ADescriptorClosedByTheOtherSideIsReady) {
  Pipe pipe;
  std::size_t length = 1;
  loop.fdIs(pipe.reader(), [&] { length = pipe.read(); });
  pipe.closeWriter();
  loop.runOnce(never);
  EXPECT_EQ(length, 0U);
}

TEST_F(ActivityLoopTest, WorkMayReplaceItself) {
  Pipe pipe;
  pipe.write();
  std::string const kept(100, 'x');
  loop.fdIs(pipe.reader(), [this, &pipe, kept] {
    loop.fdIs(pipe.reader(), note("second"));
    events.push_back(kept);  // what the work holds is still there
  });
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre(kept));
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre(kept, "second"));
}

TEST_F(ActivityLoopTest, RemovedWorkDoesNotRunEvenIfReady) {
  Pipe a;
  Pipe b;
  loop.fdIs(a.reader(), [&] {
    events.push_back("a");
    loop.fdDel(a.reader());
    loop.fdDel(b.reader());
  });
  watch(b, "b");
  a.write();
  b.write();
  loop.runOnce(never);
  loop.runOnce(0);
  EXPECT_THAT(events, ElementsAre("a"));
}

TEST_F(ActivityLoopTest, ANumberThatWasReadyUnderAnotherFileIsNotReadyForTheNew) {
  Pipe a;
  Pipe old;
  Pipe fresh;
  ASSERT_LT(a.reader(), old.reader());
  loop.fdIs(a.reader(), [&] {
    a.read();
    loop.fdDel(old.reader());
    ASSERT_EQ(dup2(fresh.reader(), old.reader()), old.reader());
    loop.fdIs(old.reader(), note("fresh"));
  });
  watch(old, "old");
  a.write();
  old.write();
  loop.runOnce(never);
  EXPECT_THAT(events, IsEmpty());
  fresh.write();
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("fresh"));
}

TEST_F(ActivityLoopTest, WhatWorkThrowsLeavesTheRoundAndLosesNothing) {
  Pipe a;
  Pipe b;
  loop.fdIs(a.reader(), [&] {
    a.read();
    throw std::runtime_error("a");
  });
  watch(b, "b");
  a.write();
  b.write();
  loop.later([] { throw std::runtime_error("later"); });
  loop.later(note("after"));
  EXPECT_THROW(loop.runOnce(0), std::runtime_error);
  EXPECT_THAT(events, IsEmpty());
  EXPECT_THROW(loop.runOnce(0), std::runtime_error);
  EXPECT_THAT(events, ElementsAre("b"));
  loop.runOnce(0);
  EXPECT_THAT(events, ElementsAre("b", "after"));
}

TEST_F(ActivityLoopTest, PutOffWorkRunsOnceInOrderInTheNextRound) {
  loop.later([this] {
    events.push_back("first");
    loop.later(note("third"));
  });
  loop.later(note("second"));
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("first", "second"));
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("first", "second", "third"));
  loop.runOnce(0);
  EXPECT_EQ(events.size(), 3U);
}

TEST_F(ActivityLoopTest, WorkThatIsPutOffLetsWhatIsReadyThenGoFirst) {
  Pipe a;
  Pipe b;
  watch(b, "b");
  loop.fdIs(a.reader(), [&] {
    a.read();
    loop.later(note("later"));
    b.write();
    events.push_back("a");
  });
  a.write();
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("a"));
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("a", "b", "later"));
}

TEST_F(ActivityLoopTest, StopEndsTheRunAfterItsRound) {
  Pipe a;
  Pipe b;
  loop.fdIs(a.reader(), [&] {
    a.read();
    loop.stop();
  });
  watch(b, "b");
  a.write();
  b.write();
  loop.later(note("later"));
  loop.run();
  EXPECT_THAT(events, ElementsAre("b", "later"));
}

TEST_F(ActivityLoopTest, AStopBeforeTheRunEndsThatRunAndNoOther) {
  loop.later(note("later"));
  loop.stop();
  loop.run();
  EXPECT_THAT(events, IsEmpty());
  loop.later([this] { loop.stop(); });
  loop.run();
  EXPECT_THAT(events, ElementsAre("later"));
}

TEST_F(ActivityLoopTest, DispatchesTheClockBetweenWhatIsReadyAndWhatIsPutOff) {
  Ptr<Alarm> const alarm = alarmAt(2.0);
  Pipe pipe;
  loop.fdIs(pipe.reader(), [&] {
    pipe.read();
    time.nowIs(2.0);
    events.push_back("pipe");
  });
  loop.later(note("later"));
  pipe.write();
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("pipe", "alarm", "later"));
}

TEST_F(ActivityLoopTest, TheClockWaitsForOnePieceOfWorkAtMost) {
  Ptr<Alarm> const alarm = alarmAt(2.0);
  auto const passes = [this, &alarm](char const* what) {
    return [this, &alarm, what] {
      events.push_back(what);
      time.nowIs(time.now() + 2.0);
      alarm->timeMinIs(time.now());
    };
  };
  Pipe a;
  Pipe b;
  loop.fdIs(a.reader(), passes("a"));
  loop.fdIs(b.reader(), passes("b"));
  a.write();
  b.write();
  loop.later(passes("first later"));
  loop.later(note("second later"));
  loop.runOnce(never);
  EXPECT_THAT(events,
              ElementsAre("a", "alarm", "b", "alarm", "first later", "alarm", "second later"));
}

TEST_F(ActivityLoopTest, WaitsForAWakeUpRoundedUpToTheMillisecond) {
  PassingTime const passing;
  timeSourceIs(&passing);
  EXPECT_EQ(waitOfRound(never), -1);
  EXPECT_EQ(waitOfRound(0), 0);
  EXPECT_EQ(waitOfRound(0.5), 500);
  Ptr<Alarm> const alarm = alarmAt(102.0);
  EXPECT_EQ(waitOfRound(never), 2000);
  EXPECT_EQ(waitOfRound(0.5), 500);
  EXPECT_EQ(waitOfRound(7.0), 2000);
  alarm->timeMinIs(100.0000001);
  EXPECT_EQ(waitOfRound(never), 1);
  EXPECT_THAT(events, IsEmpty());
  alarm->timeMinIs(99.0);
  EXPECT_EQ(waitOfRound(never), 0);
  EXPECT_THAT(events, ElementsAre("alarm"));
}

TEST_F(ActivityLoopTest, AWaitIsNeverLongerThanWhatTheSystemCanCount) {
  PassingTime const passing;
  timeSourceIs(&passing);
  Ptr<Alarm> const alarm = alarmAt(1e18);
  EXPECT_EQ(waitOfRound(never), 3600 * 1000);
  EXPECT_EQ(waitOfRound(1e9), 3600 * 1000);
}

TEST_F(ActivityLoopTest, DoesNotWaitForTimeThatStandsStill) {
  Ptr<Alarm> const alarm = alarmAt(2.0);
  EXPECT_EQ(waitOfRound(never), -1);
  EXPECT_EQ(waitOfRound(0.5), 500);
  time.nowIs(2.0);
  EXPECT_EQ(waitOfRound(never), 0);
  EXPECT_THAT(events, ElementsAre("alarm"));
}

TEST_F(ActivityLoopTest, DoesNotWaitWhileWorkIsPutOff) {
  loop.later(note("later"));
  EXPECT_EQ(waitOfRound(never), 0);
  EXPECT_EQ(waitOfRound(never), -1);
}

TEST_F(ActivityLoopTest, AWaitThatASignalInterruptsIsARoundWithNothingReady) {
  Ptr<Alarm> const alarm = alarmAt(0.0);
  loop.later(note("later"));
  WaitScript script;
  script.error = EINTR;
  waitScript = &script;
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("alarm", "later"));
}

TEST_F(ActivityLoopTest, AWaitThatTheSystemRefusesIsAnError) {
  WaitScript script;
  script.error = ENOMEM;
  waitScript = &script;
  try {
    loop.runOnce(never);
    FAIL() << "no error";
  } catch (std::system_error const& error) {
    EXPECT_EQ(error.code(), std::errc::not_enough_memory);
    EXPECT_EQ(std::string(error.what()).find("poll: "), 0U);
  }
}

}  // namespace
}  // namespace Kest::Agent
