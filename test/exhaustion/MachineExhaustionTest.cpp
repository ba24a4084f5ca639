#include <csignal>
#include <memory>
#include <ostream>
#include <string>

#include "platform/mox/Log.h"
#include "platform/mox/Trace.h"
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

TEST(MachineExhaustion, ItIsSilencedBoundAnewAndBroughtBackWithoutMemory) {
  struct Scene : MachineScene {
    Mox::Ptr<KestSliceDmaConfig> nextConfig{new KestSliceDmaConfig("next")};
    Mox::Ptr<Mox::Clock> nextClock{new Mox::Clock("next")};
  };
  atEveryAllocation([] { return Scene(); },
                    [](Scene& scene) {
                      scene.sm->hasNotificationActiveIs(false);
                      scene.sm->configIs(scene.nextConfig);
                      scene.sm->hasNotificationActiveIs(true);
                      scene.sm->moxDoZombieReactors(true);
                      scene.sm->moxDoZombieReactors(false);
                      scene.sm->stateTimerIs(scene.nextClock);  // polls
                    },
                    [](Scene& scene, End end) {
                      EXPECT_EQ(end, End::done);
                      EXPECT_EQ(scene.nextConfig->observers().count(), 1U);
                      EXPECT_NE(scene.nextClock->timeMin(), Mox::never);
                    });
}

/// A machine whose traces are on, and go nowhere.
struct TracedScene : MachineScene {
  TracedScene() {
    Mox::traceStreamIs(&nowhere());
    Mox::traceSettingIs("KestSliceDma/*");
  }
  ~TracedScene() {
    Mox::traceSettingIs("KestSliceDma/");
    Mox::traceStreamIs(nullptr);
  }
  TracedScene(TracedScene&&) = delete;

  static std::ostream& nowhere() {
    static std::ostream stream(nullptr);
    return stream;
  }
};

auto makeTracedScene() {
  return std::make_unique<TracedScene>();
}

TEST(MachineExhaustion, ThePollIsArmedThoughItCannotBeTraced) {
  auto const isArmed = [](std::unique_ptr<TracedScene>& scene, End) {
    EXPECT_NE(scene->clock->timeMin(), Mox::never);
  };
  atEveryAllocation(
      makeTracedScene,
      [](std::unique_ptr<TracedScene>& scene) { scene->sm->modeIs(SmMode::smModePolling_); },
      isArmed);
  atEveryAllocation(
      makeTracedScene, [](std::unique_ptr<TracedScene>& scene) { scene->sm->handleTimerExpired(); },
      isArmed);
}

void pollShort(MachineScene& scene, std::size_t at) {
  Exhaustion::Shortage const shortage(at, Exhaustion::Lasting::forGood);
  scene.sm->handleTimerExpired();
}

/// At the allocation of that number memory runs out.
using MismatchExhaustion = testing::TestWithParam<std::size_t>;

// NOLINTNEXTLINE(readability-function-cognitive-complexity): that of the macro for the end
TEST_P(MismatchExhaustion, EndsTheProcess) {
  MachineScene scene;
  scene.status->deviceStateIs(scene.key, DeviceState::deviceStateDown_);
  Mox::logSinkIs([](Mox::LogHandle const&, Mox::String8 const&) {});
  std::string const line = "^handleTimerExpired: " + std::string(scene.key.view()) +
                           " expected state: down, actual state: up\n$";
  EXPECT_EXIT(pollShort(scene, GetParam()), testing::KilledBySignal(SIGABRT), line);
  Mox::logSinkIs(nullptr);
}

INSTANTIATE_TEST_SUITE_P(Machine, MismatchExhaustion, testing::Range<std::size_t>(1, 9));

}  // namespace
}  // namespace Hardware::Kest::Slice
