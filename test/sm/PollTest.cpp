#include <unistd.h>

#include <cstdlib>

#include "platform/mox/Log.h"
#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char const* pollFailed =
    "KestSliceDmaSm:97: void Hardware::Kest::Slice::KestSliceDmaSm::handleTimerExpired(): "
    "Assertion `false' failed.";

/// Writes the whole of a log message, its definition included, to standard error.
void logToStderr(Mox::LogHandle const& message, Mox::String8 const& text) {
  std::fprintf(stderr, "log %s|%u|%s|%s|%s|%g|%g|%d\nlog %s\n", message.name().charPtr(),
               message.severity(), message.format().charPtr(), message.explanation().charPtr(),
               message.recommendedAction().charPtr(), message.first(), message.second(),
               message.flag(), text.charPtr());
}

/// Leads standard error into a pipe that nobody reads.
void loseReaderOfStderr() {
  int ends[2];
  if (pipe(ends) != 0 || dup2(ends[1], STDERR_FILENO) < 0) std::_Exit(1);
  close(ends[0]);
  close(ends[1]);
}

/// Standard error of a poll that finds the device in another state.
std::string mismatch(std::string const& devName, std::string const& expected,
                     std::string const& actual) {
  std::string const states = devName + " expected state: " + expected + ", actual state: " + actual;
  return "kestDmaIsDeviceUp('" + devName + "')\n" + "handleTimerExpired: " + states + "\n" +
         "kestDmaDump()\n"
         "log KEST_DMA_DEVICE_STATE_ERROR|3|%s expected state: %s, actual state: %s|"
         "Device up/down state changed unexpectedly. "
         "Forwarding agent restarted in order to recover from this error.|"
         "No action is required.|0|1|0\n"
         "log KEST_DMA_DEVICE_STATE_ERROR: " +
         states + "\n";
}

class PollTest : public SmTest {
 protected:
  PollTest() { Mox::logSinkIs(logToStderr); }
  ~PollTest() override { Mox::logSinkIs(nullptr); }

  unsigned calls = 0;  // of the driver, for tests that count them

  /// What the status says of the device, and what the driver does.
  void deviceIs(char const* devName, DeviceState expected, bool actuallyUp) {
    status->deviceStateIs(devName, expected);
    driver.upIs(devName, actuallyUp);
    journal.taken();
  }
};

TEST_F(PollTest, NothingToAskRearms) {
  time.advance(1500000);
  sm->handleTimerExpired();
  EXPECT_THAT(journal.taken(), IsEmpty());
  EXPECT_EQ(timeMin(), 3.5);
}

TEST_F(PollTest, AsksForEveryDeviceInTheCollectionsOrderAndRearms) {
  deviceIs("fap0", up, true);
  deviceIs("fap1", down, false);
  deviceIs("fap2", unknown, true);
  deviceIs("fap3", unknown, false);
  Support::Lines expected;
  for (auto it = status->deviceStateIteratorConst(); it; ++it) {
    expected.push_back(std::string("kestDmaIsDeviceUp('") + it.key().charPtr() + "')");
  }
  ASSERT_EQ(expected.size(), 4U);

  pass(1000000);
  sm->handleTimerExpired();
  EXPECT_EQ(journal.taken(), expected);
  EXPECT_EQ(timeMin(), 3.0);
}

TEST_F(PollTest, DeviceUpThatIsToBeDownIsReportedDumpedLoggedAndEndsTheProcess) {
  deviceIs("fap0", down, true);
  journal.echoIs(true);
  EXPECT_ABORT(sm->handleTimerExpired(), mismatch("fap0", "down", "up"));
}

TEST_F(PollTest, DeviceDownThatIsToBeUpIsReportedDumpedLoggedAndEndsTheProcess) {
  deviceIs("fap0", up, false);
  sm->modeIs(SmMode::smModePolling_);
  journal.echoIs(true);
  EXPECT_ABORT(pass(2000000), mismatch("fap0", "up", "down"));
}

TEST_F(PollTest, OnlyTheFirstMismatchInTheCollectionsOrderIsReported) {
  for (char const* devName : {"fap0", "fap1", "fap2"}) deviceIs(devName, up, false);
  std::string const first = status->deviceStateIteratorConst().key().charPtr();
  journal.echoIs(true);
  EXPECT_ABORT(sm->handleTimerExpired(), mismatch(first, "up", "down"));
}

TEST_F(PollTest, MismatchAbortsWhateverItsReportThrows) {
  deviceIs("fap0", up, false);
  sm->modeIs(SmMode::smModePolling_);
  Mox::logSinkIs([](Mox::LogHandle const&, Mox::String8 const&) { throw 1; });
  driver.reaction = [this] {
    if (++calls == 2) throw 2;  // the dump
  };
  journal.echoIs(true);
  EXPECT_ABORT(pass(2000000),
               "kestDmaIsDeviceUp('fap0')\n"
               "handleTimerExpired: fap0 expected state: up, actual state: down\n"
               "kestDmaDump()\n");
}

TEST_F(PollTest, MismatchAbortsThoughNobodyReadsItsReport) {
  deviceIs("fap0", up, false);
  EXPECT_ABORT(
      {
        loseReaderOfStderr();
        sm->handleTimerExpired();
      },
      "");
}

TEST_F(PollTest, PassThatThrowsComesAgain) {
  deviceIs("fap0", up, true);
  sm->modeIs(SmMode::smModePolling_);
  driver.reaction = [] { throw 1; };
  pass(2000000);
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaIsDeviceUp('fap0')"));
  EXPECT_EQ(timeMin(), 4.0);

  time.advance(1000000);
  EXPECT_THROW(sm->handleTimerExpired(), int);
  EXPECT_EQ(timeMin(), 5.0);

  Mox::Ptr<Mox::Clock> const other(new Mox::Clock("other"));
  EXPECT_THROW(sm->stateTimerIs(other), int);
  driver.reaction = nullptr;
  journal.taken();
  time.advance(2000000);
  other->dispatch();
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaIsDeviceUp('fap0')"));
}

TEST_F(PollTest, DriverErrorEndsTheProcess) {
  for (DeviceState expected : {up, unknown}) {
    deviceIs("fap0", expected, true);
    for (int result : {11, -1}) {
      driver.answersIs("kestDmaIsDeviceUp", "fap0", {result});
      EXPECT_ABORT(sm->handleTimerExpired(), "kestDmaIsDeviceUp fap0 returned " +
                                                 std::to_string(result) + "\n" +
                                                 assertion(pollFailed));
    }
  }
}

TEST_F(PollTest, DeviceThatIsGoneRaisesSignal7) {
  deviceIs("fap0", up, true);
  driver.answersIs("kestDmaIsDeviceUp", "fap0", {19});
  EXPECT_EXIT(
      {
        std::signal(7, SIG_DFL);  // a sanitizer may hold it
        sm->handleTimerExpired();
      },
      testing::KilledBySignal(7), testing::Eq("kestDmaIsDeviceUp fap0 returned 19\n"));
}

TEST_F(PollTest, WalkGoesOnWhenSignal7IsIgnored) {
  deviceIs("fap0", up, true);
  deviceIs("fap1", down, false);
  status->deviceStateIs("fap2", down);  // the driver stores nothing
  for (char const* devName : {"fap0", "fap1", "fap2"}) {
    driver.answersIs("kestDmaIsDeviceUp", devName, {19});
  }
  std::string expected;
  for (auto it = status->deviceStateIteratorConst(); it; ++it) {
    std::string const devName = it.key().charPtr();
    expected += "kestDmaIsDeviceUp('" + devName + "')\n";
    expected += "kestDmaIsDeviceUp " + devName + " returned 19\n";
  }
  journal.echoIs(true);
  EXPECT_EXIT(
      {
        std::signal(7, SIG_IGN);
        sm->handleTimerExpired();
        std::fprintf(stderr, "armed for %g\n", timeMin());
        _exit(0);
      },
      testing::ExitedWithCode(0), testing::Eq(expected + "armed for 2\n"));
}

TEST_F(PollTest, StateOutOfRangeEndsTheProcessAfterTheDriverWasAsked) {
  deviceIs("fap0", static_cast<DeviceState>(3), true);
  journal.echoIs(true);
  EXPECT_ABORT(sm->handleTimerExpired(),
               "kestDmaIsDeviceUp('fap0')\n" +
                   assertion("KestSliceDmaSm:103: "
                             "void Hardware::Kest::Slice::KestSliceDmaSm::handleTimerExpired(): "
                             "Assertion `expectedState == DeviceState::deviceStateDown_ || "
                             "expectedState == DeviceState::deviceStateUp_' failed."));
}

}  // namespace
}  // namespace Hardware::Kest::Slice
