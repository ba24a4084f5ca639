#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <system_error>

#include "agent/process/ActivityLoop.h"
#include "test/agent/support/Pipe.h"
#include "test/platform/Journaled.h"

namespace Kest::Agent {
namespace {

using Mox::never;
using Test::Events;
using Test::Pipe;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

bool isBlocked(int number) {
  sigset_t mask;
  pthread_sigmask(SIG_BLOCK, nullptr, &mask);
  return sigismember(&mask, number) == 1;
}

class ActivityLoopSignalTest : public ::testing::Test {
 protected:
  ActivityLoop::Work note(char const* what) {
    return [this, what] { events.push_back(what); };
  }

  Events events;
  ActivityLoop loop{nullptr};
};

TEST_F(ActivityLoopSignalTest, RunsTheWorkOfEachSignal) {
  loop.signalIs(SIGUSR1, note("usr1"));
  loop.signalIs(SIGUSR2, note("usr2"));
  raise(SIGUSR2);
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("usr2"));
  kill(getpid(), SIGUSR1);
  raise(SIGUSR2);
  loop.runOnce(never);
  EXPECT_THAT(events, ::testing::UnorderedElementsAre("usr2", "usr1", "usr2"));
}

TEST_F(ActivityLoopSignalTest, SignalsGoBeforeDescriptors) {
  Pipe pipe;
  loop.fdIs(pipe.reader(), note("pipe"));
  pipe.write();
  loop.signalIs(SIGUSR1, note("signal"));
  raise(SIGUSR1);
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("signal", "pipe"));
}

TEST_F(ActivityLoopSignalTest, ASignalsWorkMayReplaceItselfAndTakeOthers) {
  loop.signalIs(SIGUSR1, [this] {
    events.push_back("first");
    loop.signalIs(SIGUSR1, note("second"));
    loop.signalIs(SIGUSR2, note("usr2"));
  });
  raise(SIGUSR1);
  loop.runOnce(never);
  raise(SIGUSR1);
  raise(SIGUSR2);
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("first", "second", "usr2"));
}

TEST_F(ActivityLoopSignalTest, ASignalWhoseWorkThrowsIsTakenAndTheOthersWait) {
  loop.signalIs(SIGUSR1, [] { throw std::runtime_error("usr1"); });
  loop.signalIs(SIGUSR2, note("usr2"));
  raise(SIGUSR1);
  raise(SIGUSR2);
  EXPECT_THROW(loop.runOnce(never), std::runtime_error);
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("usr2"));
}

TEST_F(ActivityLoopSignalTest, GivesTheSignalMaskBackAsItWas) {
  sigset_t usr2;
  sigemptyset(&usr2);
  sigaddset(&usr2, SIGUSR2);
  pthread_sigmask(SIG_BLOCK, &usr2, nullptr);
  {
    ActivityLoop passing(nullptr);
    passing.signalIs(SIGUSR1, note("usr1"));
    passing.signalIs(SIGUSR2, note("usr2"));
    EXPECT_TRUE(isBlocked(SIGUSR1));
    EXPECT_TRUE(isBlocked(SIGUSR2));
  }
  EXPECT_FALSE(isBlocked(SIGUSR1));
  EXPECT_TRUE(isBlocked(SIGUSR2));
  pthread_sigmask(SIG_UNBLOCK, &usr2, nullptr);
}

volatile std::sig_atomic_t delivered = 0;

TEST_F(ActivityLoopSignalTest, ASignalStillPendingAtTheEndIsDelivered) {
  struct sigaction action {};
  struct sigaction old {};
  action.sa_handler = [](int) { delivered = 1; };
  sigaction(SIGUSR1, &action, &old);
  {
    ActivityLoop passing(nullptr);
    passing.signalIs(SIGUSR1, note("usr1"));
    raise(SIGUSR1);
    EXPECT_EQ(delivered, 0);
  }
  EXPECT_EQ(delivered, 1);
  sigaction(SIGUSR1, &old, nullptr);
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(ActivityLoopSignalTest, RefusesSignalsThatCannotBeTaken) {
  for (int number : {0, -1, 1000, SIGKILL, SIGSTOP}) {
    EXPECT_THROW(loop.signalIs(number, note("never")), std::system_error) << number;
  }
  loop.signalIs(SIGUSR1, note("usr1"));
  raise(SIGUSR1);
  loop.runOnce(never);
  EXPECT_THAT(events, ElementsAre("usr1"));
}

}  // namespace
}  // namespace Kest::Agent
