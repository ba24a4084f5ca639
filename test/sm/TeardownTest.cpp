#include <functional>
#include <vector>

#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Runs `onZero` when only observers hold the entity any more.
template <class Entity>
class ReleaseObserver : public Entity::NotifieeConst {
 public:
  ReleaseObserver(Mox::Ptr<Entity> const& entity, std::function<void()> onZero)
      : onZero_(std::move(onZero)) {
    ReleaseObserver::notifierIs(entity);
    ReleaseObserver::isRegisteredNotifieeIs(true);
  }
  void onZeroReferences() override { onZero_(); }

 private:
  std::function<void()> onZero_;
};

using TeardownTest = SmTest;

TEST_F(TeardownTest, TimerGoesBeforeTheStatusAndTheStatusBeforeTheConfigReactor) {
  // What is left when the status is released: reactors hold their notifiers.
  std::vector<unsigned> timers;
  std::vector<unsigned> configReactors;
  std::vector<std::size_t> registered;
  Mox::Ptr const observer(new ReleaseObserver<KestSliceDmaStatus>(status, [&] {
    timers.push_back(clock->notifierReferences());
    configReactors.push_back(config->notifierReferences());
    registered.push_back(config->observers().count());
  }));
  ASSERT_EQ(clock->notifierReferences(), 1U);
  status = nullptr;
  EXPECT_THAT(timers, IsEmpty());

  sm = nullptr;
  EXPECT_THAT(timers, ElementsAre(0U));
  EXPECT_THAT(configReactors, ElementsAre(1U));
  EXPECT_THAT(registered, ElementsAre(0U));
  EXPECT_EQ(config->notifierReferences(), 0U);
}

TEST_F(TeardownTest, ReactorsThatOutliveTheMachineReactToNothing) {
  auto const configReactor = sm->configReactor();
  auto const timer = sm->stateTimerReactor();
  sm->modeIs(SmMode::smModePolling_);
  status->deviceStateIs("fap0", unknown);
  journal.taken();

  sm = nullptr;
  EXPECT_TRUE(configReactor->moxMarkedForDeletion());
  EXPECT_TRUE(timer->moxMarkedForDeletion());
  EXPECT_EQ(configReactor->kestSliceDmaSm(), nullptr);
  EXPECT_EQ(timer->kestSliceDmaSm(), nullptr);
  EXPECT_EQ(configReactor->references(), 1U);
  EXPECT_EQ(timer->references(), 1U);
  config->switchPortIs(port("et1"));
  config->deviceIs(device("fap0"));
  configReactor->onSwitchPort("et1");
  pass(2000000);
  timer->onTime();
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(TeardownTest, ReactorThatAloneHoldsItsConfigGoesWithIt) {
  std::size_t told = 0;
  Mox::Ptr const observer(new ReleaseObserver<KestSliceDmaConfig>(config, [&] { ++told; }));
  Mox::Ptr<KestSliceDmaSm::MoxConfig> reactor(new KestSliceDmaSm::MoxConfig(sm.ptr(), config));
  sm->configIs(nullptr);
  config = nullptr;
  ASSERT_EQ(told, 1U);

  reactor = nullptr;
  EXPECT_EQ(told, 1U);
  EXPECT_EQ(observer->notifier()->observers().count(), 1U);
}

TEST_F(TeardownTest, LookingAtTheConfigThatOnlyObserversHoldTellsNobody) {
  std::size_t told = 0;
  Mox::Ptr const observer(new ReleaseObserver<KestSliceDmaConfig>(config, [&] { ++told; }));
  config = nullptr;
  ASSERT_EQ(told, 1U);

  sm->handleSwitchPort("et1");
  sm->doVerify();
  EXPECT_EQ(sm->config()->name().string(), "config");
  EXPECT_EQ(observer->notifier(), sm->configReactor()->notifier());
  sm->moxDoZombieReactors(true);
  EXPECT_EQ(told, 1U);
}

}  // namespace
}  // namespace Hardware::Kest::Slice
