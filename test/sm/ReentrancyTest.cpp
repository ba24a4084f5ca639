#include <functional>

#include "registry/CollectionObserver.h"
#include "test/sm/SmFixture.h"

/// What the status' observers and the driver do to the machine in the middle of its handlers.
namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Runs `reaction` at every change of the status.
class StatusHook : public CollectionObserver<KestSliceDmaStatus> {
 public:
  explicit StatusHook(Mox::Ptr<KestSliceDmaStatus> const& status) : CollectionObserver(status) {}

  std::function<void()> reaction;

 protected:
  void changed(Mox::AttributeId, Mox::String8 const&) override {
    if (reaction) reaction();
  }
};

class ReentrancyTest : public SmTest {
 protected:
  ReentrancyTest() {
    config->nativeVlanIs("et1", 10);
    config->switchportModeIs("et1", tunnel);
    other->nativeVlanIs("et1", 20);
    status->deviceStateIs("fap0", unknown);
    status->deviceStateIs("fap1", unknown);
    journal.taken();
  }

  /// Whether the machine has gone: it alone holds the status beside the test and its observers.
  bool isMachineGone() const { return status->references() - status->notifierReferences() == 1; }

  /// Drops the last reference to the machine, which is in the middle of a handler.
  void letGo() {
    sm = nullptr;
    EXPECT_FALSE(isMachineGone());
  }

  Support::Lines const portCreated{ifadd("et1"),
                                   "usleep(100000)",
                                   "status switchPort et1: created",
                                   "kestDmaNativeVlan('et1', true, 10)",
                                   "status nativeVlan et1: 10",
                                   "status switchportMode et1: switchportModeDot1qTunnel"};
  Support::Lines const polled{"kestDmaIsDeviceUp('fap0')", "kestDmaIsDeviceUp('fap1')"};

  Mox::Ptr<KestSliceDmaConfig> other{new KestSliceDmaConfig("other")};
  Mox::Ptr<Mox::Clock> otherClock{new Mox::Clock("other")};
  Mox::Ptr<Mox::Clock> thirdClock{new Mox::Clock("third")};
  Mox::Ptr<StatusHook> hook{new StatusHook(status)};
};

TEST_F(ReentrancyTest, MachineLivesUntilTheReactorsHandlerReturns) {
  hook->reaction = [&] { letGo(); };
  config->switchPortIs(port("et1"));
  EXPECT_EQ(journal.taken(), portCreated);
  EXPECT_TRUE(isMachineGone());

  sm = kestSliceDmaSmFactory(config, status);
  config->deviceIs(device("fap0"));
  EXPECT_THAT(
      journal.taken(),
      ElementsAre("kestDmaDeviceRename('fap0', '0000:05:00.0')", "kestDmaDeviceDown('fap0')",
                  "kestDmaDeviceParam('fap0', 2, fapTypeArad, 11, 12, 13, 14, 15, 16, 17)",
                  "status device fap0: registered"));
  EXPECT_TRUE(isMachineGone());
}

TEST_F(ReentrancyTest, MachineLivesUntilAHandlerThatIsCalledReturns) {
  auto const dies = [&](auto const& call) {
    sm = kestSliceDmaSmFactory(config, status);
    hook->reaction = [&] { letGo(); };
    driver.reaction = hook->reaction;
    call();
    hook->reaction = nullptr;
    driver.reaction = nullptr;
    EXPECT_TRUE(isMachineGone());
    return journal.taken();
  };
  config->newSwitchPort(port("et1"));
  config->newDevice(device("fap0"));
  EXPECT_EQ(dies([&] { sm->handleSwitchPort("et1"); }), portCreated);
  status->nativeVlanIs("et1", 11);
  journal.taken();
  EXPECT_THAT(dies([&] { sm->handleNativeVlan("et1"); }),
              ElementsAre("kestDmaNativeVlan('et1', true, 10)", "status nativeVlan et1: 10"));
  EXPECT_EQ(dies([&] { sm->handleDevice("fap0"); }).back(), "status device fap0: registered");
  config->newDeviceState("fap0", up);
  EXPECT_THAT(dies([&] { sm->handleDeviceState("fap0"); }),
              ElementsAre("kestDmaDeviceUp('fap0')", "status deviceState fap0: deviceStateUp"));
}

TEST_F(ReentrancyTest, MachineLivesUntilItsPollReturns) {
  driver.reaction = [&] { letGo(); };
  sm->handleTimerExpired();
  EXPECT_EQ(journal.taken(), polled);
  EXPECT_TRUE(isMachineGone());

  sm = kestSliceDmaSmFactory(config, status);
  sm->modeIs(SmMode::smModePolling_);
  pass(2000000);
  EXPECT_EQ(journal.taken(), polled);
  EXPECT_TRUE(isMachineGone());
}

TEST_F(ReentrancyTest, MachineLivesUntilTheMoveOfItsTimerIsDone) {
  driver.reaction = [&] { letGo(); };
  sm->stateTimerIs(otherClock);
  EXPECT_EQ(journal.taken(), polled);
  EXPECT_TRUE(isMachineGone());
  EXPECT_EQ(otherClock->notifierReferences(), 0U);
}

TEST_F(ReentrancyTest, HandlerEndsOnTheConfigItBeganWithAfterItIsUnbound) {
  std::function<void()> const unbindings[] = {
      [&] { sm->configIs(nullptr); }, [&] { sm->configDel(); }, [&] { sm->configIs(other); },
      [&] { sm->configReactor()->notifierIs(nullptr); }};
  for (auto const& unbind : unbindings) {
    for (auto* const when : {&driver.reaction, &hook->reaction}) {
      sm = kestSliceDmaSmFactory(config, status);
      status->switchPortDelAll();
      status->nativeVlanDelAll();
      status->switchportModeDelAll();
      config->switchPortDelAll();
      journal.taken();
      *when = [&] {
        unbind();
        *when = nullptr;
      };
      config->switchPortIs(port("et1"));
      EXPECT_EQ(journal.taken(), portCreated);
      EXPECT_NE(sm->config(), config);
    }
  }
}

TEST_F(ReentrancyTest, ConfigLivesUntilTheHandlerThatBeganWithItReturns) {
  config->newSwitchPort(port("et1"));
  driver.reaction = [&] {
    sm->configIs(nullptr);
    config = nullptr;
    driver.reaction = nullptr;
  };
  sm->handleSwitchPort("et1");
  EXPECT_EQ(journal.taken(), portCreated);
}

TEST_F(ReentrancyTest, PollWhoseTimerIsDroppedGoesOnUnarmed) {
  auto const timer = sm->stateTimerReactor();
  driver.reaction = [&] { sm->stateTimerDel(); };
  sm->modeIs(SmMode::smModePolling_);
  pass(2000000);
  EXPECT_EQ(journal.taken(), polled);
  EXPECT_EQ(sm->stateTimer(), nullptr);
  EXPECT_EQ(timer->timeMin(), Mox::never);
}

TEST_F(ReentrancyTest, PollWhoseTimerIsMadeAnewArmsTheNewOne) {
  driver.reaction = [&] {
    sm->stateTimerIs(nullptr);
    sm->stateTimerIs(otherClock);
  };
  sm->handleTimerExpired();
  EXPECT_EQ(journal.taken(), polled);
  EXPECT_EQ(otherClock->timeMin(), 2.0);
}

TEST_F(ReentrancyTest, TimerThatIsMovedByItsPollPollsAtOnceAndGoesOnThere) {
  sm->modeIs(SmMode::smModePolling_);
  driver.reaction = [&] { sm->stateTimerIs(otherClock); };
  pass(2000000);
  EXPECT_THAT(journal.taken(), ElementsAre(polled[0], polled[0], polled[1], polled[1]));
  EXPECT_EQ(clock->timeMin(), Mox::never);
  EXPECT_EQ(otherClock->timeMin(), 4.0);
}

TEST_F(ReentrancyTest, TimerThatIsMovedByThePollOfItsMoveStaysWhereItWasMovedLast) {
  driver.reaction = [&] { sm->stateTimerIs(thirdClock); };
  sm->stateTimerIs(otherClock);
  EXPECT_EQ(sm->stateTimer(), thirdClock);
  EXPECT_EQ(otherClock->timeMin(), Mox::never);
  EXPECT_EQ(thirdClock->timeMin(), 2.0);
}

TEST_F(ReentrancyTest, TimerThatIsDroppedByThePollOfItsMoveStaysSilent) {
  auto const timer = sm->stateTimerReactor();
  driver.reaction = [&] { sm->stateTimerIs(nullptr); };
  sm->stateTimerIs(otherClock);
  EXPECT_EQ(journal.taken(), polled);
  EXPECT_EQ(sm->stateTimerReactor(), nullptr);
  EXPECT_TRUE(timer->moxMarkedForDeletion());
  EXPECT_EQ(timer->kestSliceDmaSm(), nullptr);
  EXPECT_FALSE(timer->isRegisteredNotifiee());
  otherClock->dispatch();
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(ReentrancyTest, TimerOfAMachineMadeAZombieByThePollOfItsMoveIsAZombie) {
  driver.reaction = [&] { sm->moxDoZombieReactors(true); };
  sm->stateTimerIs(otherClock);
  EXPECT_TRUE(sm->stateTimerReactor()->moxMarkedForDeletion());
}

TEST_F(ReentrancyTest, InitializationWhosePollDropsTheTimerIsDone) {
  Mox::activityManager()->clockIs(otherClock);
  driver.reaction = [&] { sm->stateTimerIs(nullptr); };
  sm->handleInitialized();
  EXPECT_EQ(journal.taken(), polled);
  EXPECT_EQ(sm->stateTimer(), nullptr);
}

}  // namespace
}  // namespace Hardware::Kest::Slice
