#include <cstdlib>

#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using ModeTest = SmTest;

TEST_F(ModeTest, PollingArmsTheTimerForThePeriodFromNow) {
  time.advance(250000);
  sm->modeIs(SmMode::smModePolling_);
  EXPECT_EQ(sm->mode(), SmMode::smModePolling_);
  EXPECT_EQ(timeMin(), 2.25);
}

TEST_F(ModeTest, PollGoesOnEveryPeriod) {
  registerDevice("fap0", up);
  driver.upIs("fap0", true);
  sm->modeIs(SmMode::smModePolling_);

  pass(1999999);
  EXPECT_THAT(journal.taken(), IsEmpty());
  pass(1);
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaIsDeviceUp('fap0')"));
  EXPECT_EQ(timeMin(), 4.0);
  pass(2500000);
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaIsDeviceUp('fap0')"));
  EXPECT_EQ(timeMin(), 6.5);
}

TEST_F(ModeTest, LeavingPollingLeavesThePollGoing) {
  registerDevice("fap0", up);
  driver.upIs("fap0", true);
  sm->modeIs(SmMode::smModePolling_);

  sm->modeIs(SmMode::smModeInitial_);
  EXPECT_EQ(timeMin(), 2.0);
  pass(2000000);
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaIsDeviceUp('fap0')"));
  EXPECT_EQ(timeMin(), 4.0);
}

TEST_F(ModeTest, OtherModesArmNothing) {
  for (int mode : {1, 3, -2, 0}) {
    sm->modeIs(static_cast<SmMode>(mode));
    EXPECT_EQ(sm->mode(), static_cast<SmMode>(mode));
    EXPECT_EQ(timeMin(), Mox::never) << mode;
  }
}

TEST_F(ModeTest, CurrentModeIsNotHandledAgain) {
  sm->modeIs(SmMode::smModePolling_);
  sm->stateTimerReactor()->timeMinIs(Mox::never);
  traceOn("*");

  sm->modeIs(SmMode::smModePolling_);
  EXPECT_EQ(timeMin(), Mox::never);
  EXPECT_THAT(journal.taken(), IsEmpty());

  sm->handleMode();
  EXPECT_EQ(timeMin(), 2.0);
}

TEST_F(ModeTest, SimulationNeverArms) {
  for (char const* value : {"7", ""}) {
    setenv("SIMULATION_VMID", value, 1);
    sm->modeIs(SmMode::smModePolling_);
    EXPECT_EQ(sm->mode(), SmMode::smModePolling_);
    EXPECT_EQ(timeMin(), Mox::never) << value;
    sm->modeIs(SmMode::smModeInitial_);
  }
  unsetenv("SIMULATION_VMID");
  sm->modeIs(SmMode::smModePolling_);
  EXPECT_EQ(timeMin(), 2.0);
}

}  // namespace
}  // namespace Hardware::Kest::Slice
