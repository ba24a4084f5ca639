#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "registry/CollectionObserver.h"
#include "registry/DeferredNotification.h"
#include "test/exhaustion/Content.h"
#include "test/exhaustion/EveryAllocation.h"
#include "test/model/TypedSuites.h"

/// What is left of an entity, and what its observers know, when a change runs out of memory.
namespace Hardware::Kest::Slice {
namespace {

using Exhaustion::atEveryAllocation;
using Exhaustion::End;

/// An observer that takes no memory of its own while it is told.
template <class Entity>
class Witness final : public CollectionObserver<Entity> {
 public:
  explicit Witness(Mox::Ptr<Entity const> const& entity) : CollectionObserver<Entity>(entity) {}

  void onNotificationException(Mox::AttributeId) override { ++exceptions; }
  void onZeroReferences() override { ++zeroReferences; }

  std::function<void()> reaction;  // what it does when it is told
  std::size_t told = 0;
  std::size_t exceptions = 0;
  std::size_t zeroReferences = 0;

 protected:
  void changed(Mox::AttributeId, Mox::String8 const&) override {
    ++told;
    if (reaction) reaction();
  }
};

template <class Entity>
struct Scene {
  using Witnesses = std::vector<Mox::Ptr<Witness<Entity>>>;

  explicit Scene(std::size_t observers) {
    for (std::size_t i = 0; i < observers; ++i) witnesses.emplace_back(new Witness<Entity>(entity));
  }

  Mox::Ptr<Entity> entity{new Entity("slice")};
  Witnesses witnesses;
};

Mox::String8 numbered(std::size_t n) {
  return Mox::String8("Ethernet3/1/" + std::to_string(n) + ", a name that takes memory");
}

template <class C>
class EntityExhaustion : public testing::Test {
 protected:
  using Entity = typename C::Entity;

  Scene<Entity> sceneOf(std::size_t entries, std::size_t observers) const {
    Scene<Entity> scene(observers);
    for (std::size_t i = 0; i < entries; ++i) {
      C::newEntry(*scene.entity, numbered(i), C::value(numbered(i), 1));
    }
    return scene;
  }

  Mox::String8 const there = numbered(0);
  Mox::String8 const absent{"Ethernet4/1/1, which is not there"};
  typename C::Value const added = C::value(absent, 1);
  typename C::Value const updated = C::value(there, 2);
};

TYPED_TEST_SUITE(EntityExhaustion, AllCollections, CollectionNames);

TYPED_TEST(EntityExhaustion, InsertsCountsAndTellsOrDoesNothing) {
  for (std::size_t const entries : {0U, 1U, 8U}) {  // with 8 the map has to grow
    std::string const before = contentOf(*this->sceneOf(entries, 0).entity);
    atEveryAllocation([&] { return this->sceneOf(entries, 3); },
                      [&](auto& scene) { TypeParam::is(*scene.entity, this->absent, this->added); },
                      [&](auto& scene, End end) {
                        std::size_t const done = end == End::done ? 1 : 0;
                        EXPECT_EQ(contentOf(*scene.entity) == before, done == 0);
                        EXPECT_EQ(scene.entity->changeCount(), done);
                        for (auto const& witness : scene.witnesses) EXPECT_EQ(witness->told, done);
                      });
  }
}

TYPED_TEST(EntityExhaustion, DoesEverythingElseWithoutMemory) {
  atEveryAllocation([&] { return this->sceneOf(4, 3); },
                    [&](auto& scene) {
                      auto& entity = *scene.entity;
                      TypeParam::is(entity, this->there, this->updated);
                      TypeParam::del(entity, this->there);
                      TypeParam::del(entity, TypeParam::iterator(entity));
                      TypeParam::delAll(entity);
                      TypeParam::notify(entity, this->there);
                      TypeParam::lookup(entity, this->there);
                    },
                    [](auto& scene, End end) {
                      EXPECT_EQ(end, End::done);
                      EXPECT_EQ(scene.entity->changeCount(), 5U);
                      for (auto const& witness : scene.witnesses) EXPECT_EQ(witness->told, 6U);
                    });
}

template <class E>
class ObserverExhaustion : public testing::Test {};
using BothEntities = testing::Types<KestSliceDmaConfig, KestSliceDmaStatus>;
TYPED_TEST_SUITE(ObserverExhaustion, BothEntities, EntityNames);

/// One that is told changes the entity again, and cannot: the change that it was told of stands,
/// and it is told that its handler failed.
TYPED_TEST(ObserverExhaustion, AChangeInsideAChangeFailsAlone) {
  Mox::String8 const port = numbered(1);
  Mox::String8 const device = numbered(2);
  auto const prepare = [&] {
    Scene<TypeParam> scene(3);
    auto* const entity = scene.entity.ptr();
    scene.witnesses[1]->reaction = [&device, entity] {
      entity->deviceStateIs(device, DeviceState::deviceStateUp_);
    };
    return scene;
  };
  atEveryAllocation(
      prepare, [&](auto& scene) { scene.entity->nativeVlanNotify(port); },
      [&](auto& scene, End end) {
        EXPECT_EQ(end, End::done);
        std::uint64_t const inside = scene.entity->changeCount();
        EXPECT_EQ(scene.witnesses[1]->exceptions, inside == 0 ? 1U : 0U);
        for (auto const& one : scene.witnesses) EXPECT_EQ(one->told, 1U + inside);
      });
}

TYPED_TEST(ObserverExhaustion, JoinsLeavesMovesAndIsToldOfTheEndWithoutMemory) {
  struct Two {
    Scene<TypeParam> from{3};
    Scene<TypeParam> to{1};
  };
  atEveryAllocation([] { return Two(); },
                    [](Two& two) {
                      auto& witness = *two.from.witnesses[1];
                      witness.isRegisteredNotifieeIs(false);
                      witness.isRegisteredNotifieeIs(true);
                      witness.notifierIs(two.to.entity);
                      two.to.entity = nullptr;
                    },
                    [](Two& two, End end) {
                      EXPECT_EQ(end, End::done);
                      EXPECT_EQ(two.from.entity->observers().count(), 2U);
                      EXPECT_EQ(two.from.witnesses[1]->zeroReferences, 1U);
                      EXPECT_EQ(two.to.witnesses[0]->zeroReferences, 1U);
                    });
}

/// The change has been made by then, so whoever made it cannot be refused.
TYPED_TEST(ObserverExhaustion, ManyAreToldOrTheProcessEnds) {
  Scene<TypeParam> scene(9);
  Mox::String8 const port = numbered(1);
  EXPECT_EXIT(
      {
        Exhaustion::Shortage const shortage(1, Exhaustion::Lasting::once);
        scene.entity->nativeVlanNotify(port);
      },
      testing::KilledBySignal(SIGABRT),
      "^KestSliceDma: no memory to tell the observers of an entity what has changed\n$");
}

/// Told later, key by key or as a whole.
class LateWitness final : public KestSliceDmaConfig::Notifiee {
 public:
  using Notifiee::onNativeVlan;
  void onNativeVlan(Mox::String8) override { ++told; }
  void onNativeVlan() override { ++told; }
  void onNotificationException(Mox::AttributeId) override { ++exceptions; }
  std::size_t told = 0;
  std::size_t exceptions = 0;
};

TEST(DeferredExhaustion, AChangeIsToldLaterOrReportedAtOnce) {
  struct LateScene {
    Mox::Ptr<KestSliceDmaConfig> config{new KestSliceDmaConfig("slice")};
    Mox::Ptr<LateWitness> witness{new LateWitness};
    Mox::Ptr<DeferredConfigNotification> deferred{new DeferredConfigNotification(config, witness)};
  };
  Mox::String8 const port = numbered(1);
  atEveryAllocation([] { return LateScene(); },
                    [&](LateScene& scene) {
                      scene.config->nativeVlanIs(port, 10);
                      scene.deferred->deliver();
                    },
                    [&](LateScene& scene, End end) {
                      scene.deferred->deliver();
                      EXPECT_EQ(scene.config->changeCount(), end == End::done ? 1U : 0U);
                      EXPECT_EQ(scene.witness->told > 0 || scene.witness->exceptions > 0,
                                end == End::done);
                    });
}

}  // namespace
}  // namespace Hardware::Kest::Slice
