#include "test/exhaustion/EveryAllocation.h"
#include "test/exhaustion/MachineScene.h"

/// What the state machine has recorded when a handler of its runs out of memory.
namespace Hardware::Kest::Slice {
namespace {

using Exhaustion::atEveryAllocation;
using Exhaustion::End;
using Sm = KestSliceDmaSm;

auto makeScene() {
  return MachineScene();
}

/// Announces all that is configured again, devices before ports: the way back for a handler that
/// failed.
void announceAll(MachineScene& scene) {
  KestSliceDmaConfig& config = *scene.config;
  for (auto it = config.deviceIteratorConst(); it; ++it) config.deviceNotify(it.key());
  for (auto it = config.deviceStateIteratorConst(); it; ++it) config.deviceStateNotify(it.key());
  for (auto it = config.switchPortIteratorConst(); it; ++it) config.switchPortNotify(it.key());
}

/// Whatever `act` leaves undone, the status holds what some prefix of its work has made, and
/// announcing everything again makes it whole.
template <class Act>
void stopsBetweenTwoRecords(Act const& act) {
  auto const states = statesOf(makeScene, act);
  MachineScene undisturbed;
  act(undisturbed);
  announceAll(undisturbed);
  atEveryAllocation(makeScene, act, [&](MachineScene& scene, End) {
    EXPECT_TRUE(isOneOf(scene.state(), states)) << scene.state();
    bool const isConfigured = contentOf(*scene.config) == contentOf(*undisturbed.config);
    announceAll(scene);
    if (isConfigured) {
      EXPECT_EQ(scene.state(), undisturbed.state());
    }
  });
}

TEST(MachineExhaustion, ItsMakingLeavesNothingBehind) {
  struct Unbound {
    Mox::Ptr<KestSliceDmaConfig> config{new KestSliceDmaConfig("config")};
    Mox::Ptr<KestSliceDmaStatus> status{new KestSliceDmaStatus("status")};
    Mox::Ptr<Sm> sm;
  };
  atEveryAllocation([] { return Unbound(); },
                    [](Unbound& all) { all.sm = kestSliceDmaSmFactory(all.config, all.status); },
                    [](Unbound& all, End end) {
                      EXPECT_EQ(end == End::done, static_cast<bool>(all.sm));
                      EXPECT_EQ(all.config->observers().count(), end == End::done ? 1U : 0U);
                    });
}

TEST(MachineExhaustion, AHandlerTellsWhoeverCalledIt) {
  for (auto const handler :
       {&Sm::handleSwitchPort, &Sm::handleNativeVlan, &Sm::handleDevice, &Sm::handleDeviceState}) {
    auto const act = [&](MachineScene& scene) {
      scene.status->nativeVlanDelAll();
      scene.status->switchPortDelAll();
      ((*scene.sm).*handler)(scene.key);
    };
    stopsBetweenTwoRecords(act);
    std::string const whole = statesOf(makeScene, act).back();
    atEveryAllocation(makeScene, act, [&](MachineScene& scene, End end) {
      EXPECT_TRUE(end == End::badAlloc || scene.state() == whole);
    });
  }
}

TEST(MachineExhaustion, AConfigurationChangeIsFollowedOrCanBeAnnouncedAgain) {
  Mox::String8 const other("Ethernet et3/2, a name that takes memory");
  auto const newPort = portValue(other, 1, static_cast<ConfigSwitchPort*>(nullptr));
  auto const port = portValue(MachineScene().key, 2, static_cast<ConfigSwitchPort*>(nullptr));
  auto const device = deviceValue(MachineScene().key, 2, static_cast<ConfigDevice*>(nullptr));
  stopsBetweenTwoRecords([&](MachineScene& scene) { scene.config->switchPortIs(newPort); });
  stopsBetweenTwoRecords([&](MachineScene& scene) { scene.config->switchPortIs(port); });
  stopsBetweenTwoRecords([&](MachineScene& scene) { scene.config->deviceIs(device); });
  stopsBetweenTwoRecords([&](MachineScene& scene) { scene.config->nativeVlanIs(scene.key, 20); });
  stopsBetweenTwoRecords([&](MachineScene& scene) { scene.config->nativeVlanDel(scene.key); });
  stopsBetweenTwoRecords([&](MachineScene& scene) { scene.config->switchPortDel(scene.key); });
}

TEST(MachineExhaustion, ThePollTakesNoMemory) {
  atEveryAllocation(
      makeScene, [](MachineScene& scene) { scene.sm->handleTimerExpired(); },
      [](MachineScene&, End end) { EXPECT_EQ(end, End::done); });
}

TEST(MachineExhaustion, ItIsBoundAnewOrAsBefore) {
  Mox::Ptr<KestSliceDmaConfig> const next(new KestSliceDmaConfig("next"));
  atEveryAllocation(
      makeScene, [&](MachineScene& scene) { scene.sm->configIs(next); },
      [&](MachineScene& scene, End end) {
        bool const moved = end == End::done;
        EXPECT_EQ(scene.sm->config() == next, moved);
        EXPECT_EQ(next->observers().count(), moved ? 1U : 0U);
        EXPECT_EQ(scene.config->observers().count(), moved ? 0U : 1U);
      });
}

struct PollingScene : MachineScene {
  PollingScene() { sm->modeIs(SmMode::smModePolling_); }
  Mox::Ptr<Mox::Clock> next{new Mox::Clock("next")};
};

TEST(MachineExhaustion, ItsPollGoesOnByTheNewClockOrByTheOld) {
  atEveryAllocation([] { return PollingScene(); },
                    [](PollingScene& scene) { scene.sm->stateTimerIs(scene.next); },
                    [](PollingScene& scene, End end) {
                      EXPECT_EQ(scene.timerState(),
                                end == End::done ? " timer on next, set" : " timer on clock, set");
                    });
}

}  // namespace
}  // namespace Hardware::Kest::Slice
