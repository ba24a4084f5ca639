#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReactorTest : public SmTest {
 protected:
  ReactorTest() {
    createPort("et1");
    registerDevice("fap0", down);
    sm->modeIs(SmMode::smModePolling_);
    journal.taken();
  }

  /// What follows one change in each collection and the poll's time.
  Support::Lines reactions() {
    config->switchPortNotify("et9");
    config->nativeVlanNotify("et1");
    config->switchportModeNotify("et1");
    config->deviceNotify("fap9");
    config->deviceStateIs("fap0", config->deviceState("fap0") == up ? down : up);
    driver.upIs("fap0", status->deviceState("fap0") == up);
    pass(2000000);
    return journal.taken();
  }

  Mox::Ptr<KestSliceDmaSm::MoxConfig> configReactor() const { return sm->configReactor(); }
  Mox::Ptr<KestSliceDmaSm::MoxStateTimer> timer() const { return sm->stateTimerReactor(); }
};

auto const all = ElementsAre("kestDmaIfdel('et9')", "kestDmaNativeVlan('et1', false, 4096)",
                             "kestDmaNativeVlan('et1', false, 4096)", "kestDmaDeviceUp('fap0')",
                             "status deviceState fap0: deviceStateUp", "kestDmaIsDeviceUp('fap0')");

TEST_F(ReactorTest, EachChangeGoesToItsHandler) {
  EXPECT_THAT(reactions(), all);
}

TEST_F(ReactorTest, SliceIdGoesNowhere) {
  config->sliceIdIs("Linecard3/0");
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(ReactorTest, InactiveMachineSilencesBothReactorsUntilItIsActive) {
  sm->hasNotificationActiveIs(false);
  EXPECT_FALSE(configReactor()->hasNotificationActive());
  EXPECT_FALSE(timer()->hasNotificationActive());
  EXPECT_EQ(config->observers().count(), 0U);
  EXPECT_THAT(reactions(), IsEmpty());

  config->deviceStateIs("fap0", down);
  sm->hasNotificationActiveIs(true);
  EXPECT_TRUE(configReactor()->hasNotificationActive());
  EXPECT_TRUE(timer()->hasNotificationActive());
  EXPECT_THAT(reactions(), all);
}

TEST_F(ReactorTest, ActivationRegistersOnlyAReactorThatWasRegistered) {
  configReactor()->isRegisteredNotifieeIs(false);
  timer()->isRegisteredNotifieeIs(false);
  sm->hasNotificationActiveIs(false);
  sm->hasNotificationActiveIs(true);
  EXPECT_FALSE(configReactor()->isRegisteredNotifiee());
  EXPECT_FALSE(timer()->isRegisteredNotifiee());
}

TEST_F(ReactorTest, ReactorThatIsMovedWhileInactiveObservesTheNewConfigOnceActive) {
  Mox::Ptr<KestSliceDmaConfig> const other(new KestSliceDmaConfig("other"));
  sm->hasNotificationActiveIs(false);
  sm->configIs(other);
  other->switchPortNotify("et1");
  EXPECT_THAT(journal.taken(), IsEmpty());

  sm->hasNotificationActiveIs(true);
  other->switchPortNotify("et1");
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaIfdel('et1')", "status switchPort et1: none"));
}

TEST_F(ReactorTest, ZombieMachineReactsToNothingUntilItIsBroughtBack) {
  sm->moxDoZombieReactors(true);
  EXPECT_TRUE(sm->moxMarkedForDeletion());
  EXPECT_TRUE(configReactor()->moxMarkedForDeletion());
  EXPECT_TRUE(timer()->moxMarkedForDeletion());
  EXPECT_FALSE(configReactor()->isRegisteredNotifiee());
  EXPECT_FALSE(timer()->isRegisteredNotifiee());
  EXPECT_TRUE(sm->hasNotificationActive());
  EXPECT_THAT(reactions(), IsEmpty());

  config->deviceStateIs("fap0", down);
  sm->moxDoZombieReactors(false);
  EXPECT_FALSE(sm->moxMarkedForDeletion());
  EXPECT_TRUE(configReactor()->isRegisteredNotifiee());
  EXPECT_TRUE(timer()->isRegisteredNotifiee());
  EXPECT_THAT(reactions(), all);
}

TEST_F(ReactorTest, ZombieReactorIgnoresWhatItIsTold) {
  sm->moxDoZombieReactors(true);
  config->deviceStateIs("fap0", up);  // every handler would have something to do
  configReactor()->onSwitchPort("et1");
  configReactor()->onNativeVlan("et1");
  configReactor()->onSwitchportMode("et1");
  configReactor()->onDevice("fap0");
  configReactor()->onDeviceState("fap0");
  timer()->onTime();
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(ReactorTest, WakeUpOfAZombieTimerWaitsUntilItIsBroughtBack) {
  Mox::Ptr<Mox::Clock> const other(new Mox::Clock("other"));
  sm->moxDoZombieReactors(true);
  sm->stateTimerIs(other);
  timer()->timeMinIs(Mox::now() + 2.0);
  time.advance(3000000);
  EXPECT_EQ(other->timeMin(), Mox::never);
  other->dispatch();
  EXPECT_EQ(timer()->timeMin(), Mox::now() - 1.0);

  sm->moxDoZombieReactors(false);
  other->dispatch();
  EXPECT_EQ(other->timeMin(), Mox::now() + 2.0);
}

TEST_F(ReactorTest, ReactorMadeOrMovedByAZombieMachineIsAZombie) {
  Mox::Ptr<KestSliceDmaConfig> const other(new KestSliceDmaConfig("other"));
  Mox::Ptr<Mox::Clock> const otherClock(new Mox::Clock("other"));
  sm->moxDoZombieReactors(true);

  sm->configIs(other);
  sm->stateTimerIs(otherClock);
  EXPECT_EQ(sm->stateTimer(), otherClock);
  EXPECT_TRUE(configReactor()->moxMarkedForDeletion());
  EXPECT_EQ(other->observers().count(), 0U);

  sm->configIs(nullptr);
  sm->configIs(config);
  sm->stateTimerIs(nullptr);
  sm->stateTimerIs(clock);
  EXPECT_TRUE(configReactor()->moxMarkedForDeletion());
  EXPECT_FALSE(configReactor()->hasNotificationActive());
  EXPECT_TRUE(timer()->moxMarkedForDeletion());
  EXPECT_FALSE(timer()->hasNotificationActive());
  EXPECT_THAT(reactions(), IsEmpty());
}

}  // namespace
}  // namespace Hardware::Kest::Slice
