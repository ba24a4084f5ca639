#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using BindingTest = SmTest;

/// A status with one device, so that a poll shows: as this call.
void givePoll(Mox::Ptr<KestSliceDmaStatus> const& status, Support::Journal& journal) {
  status->deviceStateIs("fap0", unknown);
  journal.taken();
}
constexpr char const* poll = "kestDmaIsDeviceUp('fap0')";

TEST_F(BindingTest, FactoryMakesAnActiveMachineThatObservesConfigAndClock) {
  EXPECT_EQ(sm->config(), config);
  EXPECT_EQ(sm->status(), status);
  EXPECT_EQ(sm->stateTimer(), clock);
  EXPECT_EQ(sm->mode(), SmMode::smModeInitial_);
  EXPECT_EQ(sm->moxFwkActivity(), nullptr);
  EXPECT_EQ(timeMin(), Mox::never);
  EXPECT_TRUE(sm->hasNotificationActive());
  EXPECT_TRUE(sm->configReactor()->hasNotificationActive());
  EXPECT_TRUE(sm->configReactor()->isRegisteredNotifiee());
  EXPECT_TRUE(sm->stateTimerReactor()->hasNotificationActive());
  EXPECT_TRUE(sm->stateTimerReactor()->isRegisteredNotifiee());
}

TEST_F(BindingTest, ConstructorAloneLeavesTheMachineInactive) {
  Mox::Ptr<KestSliceDmaSm> const bare(new KestSliceDmaSm(config, status));

  EXPECT_FALSE(bare->hasNotificationActive());
  EXPECT_TRUE(bare->configReactor()->hasNotificationActive());
  EXPECT_TRUE(bare->stateTimerReactor()->hasNotificationActive());
}

TEST_F(BindingTest, MachineWithoutConfigIsBoundLater) {
  sm = kestSliceDmaSmFactory(nullptr, status);
  EXPECT_EQ(sm->configReactor(), nullptr);
  EXPECT_EQ(sm->config(), nullptr);
  EXPECT_EQ(timeMin(), Mox::never);
  EXPECT_EQ(sm->mode(), SmMode::smModeInitial_);

  sm->configIs(config);
  config->switchPortNotify("et1");
  EXPECT_EQ(sm->config(), config);
  EXPECT_THAT(journal.taken(), ElementsAre("kestDmaIfdel('et1')"));
}

TEST_F(BindingTest, WhatAConfigHoldsAlreadyIsNotReplayed) {
  sm = nullptr;
  config->switchPortIs(port("et1"));
  config->deviceIs(device("fap0"));

  sm = kestSliceDmaSmFactory(config, status);
  sm->configIs(nullptr);
  sm->configIs(config);
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(BindingTest, SameConfigAgainDoesNothing) {
  auto const reactor = sm->configReactor();
  auto const version = config->observers().version();

  sm->configIs(config);
  EXPECT_EQ(sm->configReactor(), reactor);
  EXPECT_EQ(config->observers().version(), version);
}

TEST_F(BindingTest, AnotherConfigMovesTheSameReactor) {
  Mox::Ptr<KestSliceDmaConfig> const other(new KestSliceDmaConfig("other"));
  other->switchPortIs(port("et2"));
  auto const reactor = sm->configReactor();

  sm->configIs(other);
  EXPECT_EQ(sm->configReactor(), reactor);
  EXPECT_EQ(sm->config(), other);
  EXPECT_EQ(config->observers().count(), 0U);
  EXPECT_EQ(config->notifierReferences(), 0U);
  config->switchPortNotify("et1");
  other->switchPortNotify("et2");
  EXPECT_THAT(journal.taken(),
              ElementsAre(ifadd("et2"), "usleep(100000)", "status switchPort et2: created",
                          "kestDmaNativeVlan('et2', false, 4096)"));
}

/// Both ways to bind nothing any more.
using Unbinding = void (*)(KestSliceDmaSm& sm);
constexpr Unbinding configUnbindings[] = {[](auto& sm) { sm.configIs(nullptr); },
                                          [](auto& sm) { sm.configDel(); }};
constexpr Unbinding timerUnbindings[] = {[](auto& sm) { sm.stateTimerIs(nullptr); },
                                         [](auto& sm) { sm.stateTimerDel(); }};

TEST_F(BindingTest, NoConfigDropsTheReactorWhichForgetsTheMachine) {
  for (Unbinding const unbind : configUnbindings) {
    auto const reactor = sm->configReactor();
    ASSERT_EQ(reactor->kestSliceDmaSm(), sm.ptr());
    for (int times = 0; times < 2; ++times) unbind(*sm);
    EXPECT_EQ(sm->configReactor(), nullptr);
    EXPECT_EQ(sm->config(), nullptr);
    EXPECT_EQ(config->observers().count(), 0U);
    EXPECT_TRUE(reactor->moxMarkedForDeletion());
    EXPECT_FALSE(reactor->hasNotificationActive());
    EXPECT_EQ(reactor->kestSliceDmaSm(), nullptr);
    EXPECT_EQ(reactor->references(), 1U);

    sm->configIs(config);
    EXPECT_NE(sm->configReactor(), reactor);
    config->switchPortNotify("et1");
    EXPECT_THAT(journal.taken(), ElementsAre("kestDmaIfdel('et1')"));
  }
}

TEST_F(BindingTest, NothingAgainLeavesAReactorThatObservesNothing) {
  auto const reactor = sm->configReactor();
  reactor->notifierIs(nullptr);
  sm->configIs(nullptr);
  EXPECT_EQ(sm->configReactor(), reactor);
  EXPECT_FALSE(reactor->moxMarkedForDeletion());

  auto const timer = sm->stateTimerReactor();
  timer->notifierIs(nullptr);
  sm->stateTimerIs(nullptr);
  EXPECT_EQ(sm->stateTimerReactor(), timer);
  EXPECT_FALSE(timer->moxMarkedForDeletion());
}

TEST_F(BindingTest, DeletionReturnsWhatWasObservedOnce) {
  EXPECT_EQ(sm->configDel(), config);
  EXPECT_EQ(sm->configDel(), nullptr);
  EXPECT_EQ(sm->stateTimerDel(), clock);
  EXPECT_EQ(sm->stateTimerDel(), nullptr);
}

TEST_F(BindingTest, SameClockAgainDoesNothing) {
  givePoll(status, journal);
  auto const reactor = sm->stateTimerReactor();

  sm->stateTimerIs(clock);
  EXPECT_EQ(sm->stateTimerReactor(), reactor);
  EXPECT_EQ(timeMin(), Mox::never);
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(BindingTest, AnotherClockMovesTheSameTimerAndPollsAtOnce) {
  givePoll(status, journal);
  Mox::Ptr<Mox::Clock> const other(new Mox::Clock("other"));
  auto const reactor = sm->stateTimerReactor();
  time.advance(500000);

  sm->stateTimerIs(other);
  EXPECT_EQ(sm->stateTimerReactor(), reactor);
  EXPECT_EQ(sm->stateTimer(), other);
  EXPECT_THAT(journal.taken(), ElementsAre(poll));
  EXPECT_EQ(timeMin(), 2.5);
  EXPECT_EQ(clock->timeMin(), Mox::never);

  time.advance(2000000);
  clock->dispatch();
  EXPECT_THAT(journal.taken(), IsEmpty());
  other->dispatch();
  EXPECT_THAT(journal.taken(), ElementsAre(poll));
}

TEST_F(BindingTest, TimerThatIsLeftWithoutAClockPollsNoMore) {
  givePoll(status, journal);
  sm->stateTimerReactor()->notifierIs(nullptr);
  EXPECT_EQ(sm->stateTimer(), nullptr);
  EXPECT_FALSE(sm->stateTimerReactor()->isRegisteredNotifiee());
  EXPECT_EQ(clock->timeMin(), Mox::never);
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(BindingTest, MovedTimerPollsWithItsNewClockSetAndJoinsItAfterwards) {
  givePoll(status, journal);
  Mox::Ptr<Mox::Clock> const other(new Mox::Clock("other"));
  bool isSet = false;
  bool hasJoined = true;
  driver.reaction = [&] {
    isSet = sm->stateTimer() == other;
    hasJoined = sm->stateTimerReactor()->isRegisteredNotifiee();
  };

  sm->stateTimerIs(other);
  EXPECT_TRUE(isSet);
  EXPECT_FALSE(hasJoined);
  EXPECT_TRUE(sm->stateTimerReactor()->isRegisteredNotifiee());
}

TEST_F(BindingTest, TimerIsDroppedAndMadeAnewWithoutAPoll) {
  givePoll(status, journal);
  for (Unbinding const unbind : timerUnbindings) {
    auto const reactor = sm->stateTimerReactor();
    ASSERT_EQ(reactor->kestSliceDmaSm(), sm.ptr());
    for (int times = 0; times < 2; ++times) unbind(*sm);
    EXPECT_EQ(sm->stateTimerReactor(), nullptr);
    EXPECT_EQ(sm->stateTimer(), nullptr);
    EXPECT_TRUE(reactor->moxMarkedForDeletion());
    EXPECT_FALSE(reactor->hasNotificationActive());
    EXPECT_FALSE(reactor->isRegisteredNotifiee());
    EXPECT_EQ(reactor->kestSliceDmaSm(), nullptr);
    EXPECT_EQ(clock->timeMin(), Mox::never);

    sm->stateTimerIs(clock);
    EXPECT_NE(sm->stateTimerReactor(), reactor);
    EXPECT_EQ(sm->stateTimer(), clock);
    EXPECT_THAT(journal.taken(), IsEmpty());
    EXPECT_EQ(timeMin(), 0);
    EXPECT_TRUE(sm->stateTimerReactor()->hasNotificationActive());
  }
}

TEST_F(BindingTest, InitializationBindsTheAgentsClockAndDisarmsTheTimer) {
  givePoll(status, journal);
  Mox::Ptr<Mox::Clock> const other(new Mox::Clock("other"));
  Mox::activityManager()->clockIs(other);
  sm->modeIs(SmMode::smModePolling_);

  sm->handleInitialized();
  EXPECT_EQ(sm->stateTimer(), other);
  EXPECT_THAT(journal.taken(), ElementsAre(poll));
  EXPECT_EQ(timeMin(), Mox::never);
}

}  // namespace
}  // namespace Hardware::Kest::Slice
