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
  using Change = std::function<void(Entity&)>;

  Scene<Entity> sceneOf(std::size_t entries, std::size_t observers) const {
    Scene<Entity> scene(observers);
    for (std::size_t i = 0; i < entries; ++i) {
      C::newEntry(*scene.entity, numbered(i), C::value(numbered(i), 1));
    }
    return scene;
  }

  /// What an undisturbed change makes of the content, one text a change that is counted, after the
  /// one of the beginning.
  std::vector<std::string> contents(std::size_t entries, Change const& change) const {
    Scene<Entity> scene = sceneOf(entries, 1);
    std::vector<std::string> all{contentOf(*scene.entity)};
    scene.witnesses[0]->reaction = [&] { all.push_back(contentOf(*scene.entity)); };
    change(*scene.entity);
    scene.witnesses[0]->reaction = nullptr;
    return all;
  }

  /// Every change of `change` is done, counted and told to everybody, or none of the three; those
  /// behind the one that fails have not begun.
  void changesWholly(std::size_t entries, Change const& change) const {
    std::vector<std::string> const all = contents(entries, change);
    for (std::size_t const observers : {0U, 1U, 3U}) {
      SCOPED_TRACE(testing::Message() << entries << " entries, " << observers << " observers");
      atEveryAllocation([&] { return sceneOf(entries, observers); },
                        [&](Scene<Entity>& scene) { change(*scene.entity); },
                        [&](Scene<Entity>& scene, End end) {
                          auto const done = static_cast<std::size_t>(scene.entity->changeCount());
                          ASSERT_LT(done, all.size());
                          EXPECT_EQ(end == End::done, done == all.size() - 1);
                          EXPECT_EQ(contentOf(*scene.entity), all[done]);
                          for (auto const& witness : scene.witnesses)
                            EXPECT_EQ(witness->told, done);
                        });
    }
  }

  Mox::String8 const there = numbered(0);
  Mox::String8 const absent{"Ethernet4/1/1, which is not there"};
};

TYPED_TEST_SUITE(EntityExhaustion, AllCollections, CollectionNames);

TYPED_TEST(EntityExhaustion, InsertsWhollyOrNotAtAll) {
  auto const value = TypeParam::value(this->absent, 1);
  for (std::size_t const entries : {0U, 1U, 8U}) {  // with 8 the map has to grow
    this->changesWholly(entries, [&](auto& e) { TypeParam::is(e, this->absent, value); });
  }
}

TYPED_TEST(EntityExhaustion, UpdatesWhollyOrNotAtAll) {
  auto const value = TypeParam::value(this->there, 2);
  this->changesWholly(3, [&](auto& e) { TypeParam::is(e, this->there, value); });
}

TYPED_TEST(EntityExhaustion, DeletesWhollyOrNotAtAll) {
  this->changesWholly(3, [&](auto& e) { TypeParam::del(e, this->there); });
  this->changesWholly(3, [&](auto& e) { TypeParam::del(e, TypeParam::iterator(e, this->there)); });
}

TYPED_TEST(EntityExhaustion, DeletesAllOneByOne) {
  this->changesWholly(3, [](auto& e) { TypeParam::delAll(e); });
}

TYPED_TEST(EntityExhaustion, AnnouncesToAllOrToNobody) {
  for (std::size_t const observers : {0U, 1U, 3U}) {
    atEveryAllocation([&] { return this->sceneOf(1, observers); },
                      [&](auto& scene) { TypeParam::notify(*scene.entity, this->there); },
                      [&](auto& scene, End end) {
                        EXPECT_EQ(scene.entity->changeCount(), 0U);
                        for (auto const& witness : scene.witnesses) {
                          EXPECT_EQ(witness->told, end == End::done ? 1U : 0U);
                        }
                      });
  }
}

TYPED_TEST(EntityExhaustion, TakesInAnEntryWhollyOrNotAtAll) {
  auto const value = TypeParam::value(this->absent, 1);
  for (std::size_t const entries : {0U, 8U}) {
    std::string const before = contentOf(*this->sceneOf(entries, 0).entity);
    atEveryAllocation([&] { return this->sceneOf(entries, 1); },
                      [&](auto& scene) { TypeParam::newEntry(*scene.entity, this->absent, value); },
                      [&](auto& scene, End end) {
                        EXPECT_EQ(contentOf(*scene.entity) == before, end == End::badAlloc);
                        EXPECT_EQ(scene.witnesses[0]->told, 0U);
                      });
  }
}

TYPED_TEST(EntityExhaustion, ReadsWithoutMemory) {
  atEveryAllocation([&] { return this->sceneOf(3, 0); },
                    [&](auto& scene) {
                      TypeParam::lookup(*scene.entity, this->there);
                      for (auto it = TypeParam::iterator(*scene.entity); it; ++it) it.value();
                    },
                    [](auto& scene, End end) {
                      EXPECT_EQ(end, End::done);
                      EXPECT_EQ(scene.entity->lookupCount(), 1U);
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
      prepare, [&](auto& scene) { scene.entity->nativeVlanIs(port, 10); },
      [&](auto& scene, End end) {
        bool const isOutside = scene.entity->nativeVlan(port) == 10;
        bool const isInside = scene.entity->deviceState(device) == DeviceState::deviceStateUp_;
        EXPECT_EQ(end == End::done, isOutside);
        EXPECT_EQ(scene.entity->changeCount(), (isOutside ? 1U : 0U) + (isInside ? 1U : 0U));
        for (auto const& witness : scene.witnesses) {
          EXPECT_EQ(witness->told, scene.entity->changeCount());
        }
        EXPECT_EQ(scene.witnesses[1]->exceptions, isOutside && !isInside ? 1U : 0U);
      });
}

TYPED_TEST(ObserverExhaustion, JoinsOrDoesNot) {
  atEveryAllocation(
      [] { return Scene<TypeParam>(2); },
      [](auto& scene) { Mox::Ptr<Witness<TypeParam>>(new Witness<TypeParam>(scene.entity)); },
      [](auto& scene, End) {
        EXPECT_EQ(scene.entity->observers().count(), 2U);
        scene.entity->nativeVlanNotify("et1");
        EXPECT_EQ(scene.witnesses[1]->told, 1U);
      });
}

TYPED_TEST(ObserverExhaustion, MovesToAnotherEntityOrStays) {
  struct Two {
    Scene<TypeParam> from{2};
    Scene<TypeParam> to{1};
  };
  atEveryAllocation([] { return Two(); },
                    [](Two& two) { two.from.witnesses[0]->notifierIs(two.to.entity); },
                    [](Two& two, End end) {
                      bool const moved = end == End::done;
                      auto const& witness = *two.from.witnesses[0];
                      EXPECT_EQ(witness.notifier(), moved ? two.to.entity : two.from.entity);
                      EXPECT_TRUE(witness.isRegisteredNotifiee());
                      two.from.entity->nativeVlanNotify("et1");
                      EXPECT_EQ(witness.told, moved ? 0U : 1U);
                      two.to.entity->nativeVlanNotify("et1");
                      EXPECT_EQ(witness.told, 1U);
                    });
}

TYPED_TEST(ObserverExhaustion, LeavesAndComesBackWithoutMemory) {
  atEveryAllocation([] { return Scene<TypeParam>(3); },
                    [](auto& scene) {
                      scene.witnesses[1]->isRegisteredNotifieeIs(false);
                      scene.witnesses[1]->isRegisteredNotifieeIs(true);
                    },
                    [](auto& scene, End end) {
                      EXPECT_EQ(end, End::done);
                      EXPECT_EQ(scene.entity->observers().count(), 3U);
                    });
}

/// The last reference from outside goes in places that cannot fail.
TYPED_TEST(ObserverExhaustion, TheEndOfReferencesIsToldWithoutMemory) {
  atEveryAllocation([] { return Scene<TypeParam>(3); }, [](auto& scene) { scene.entity = nullptr; },
                    [](auto& scene, End end) {
                      EXPECT_EQ(end, End::done);
                      for (auto const& witness : scene.witnesses) {
                        EXPECT_EQ(witness->zeroReferences, 1U);
                      }
                    });
}

/// Tells of the slice id too.
class IdWitness final : public KestSliceDmaConfig::Notifiee {
 public:
  void onSliceId() override { ++told; }
  std::size_t told = 0;
};

TEST(SliceIdExhaustion, IsSetWhollyOrNotAtAll) {
  struct IdScene {
    Mox::Ptr<KestSliceDmaConfig> config{new KestSliceDmaConfig("slice")};
    std::vector<Mox::Ptr<IdWitness>> witnesses;
  };
  Mox::String8 const id("Linecard3, with a name that takes memory");
  for (std::size_t const observers : {0U, 1U, 3U}) {
    auto const prepare = [&] {
      IdScene scene;
      for (std::size_t i = 0; i < observers; ++i) {
        scene.witnesses.emplace_back(new IdWitness);
        scene.witnesses.back()->notifierIs(scene.config);
        scene.witnesses.back()->isRegisteredNotifieeIs(true);
      }
      return scene;
    };
    atEveryAllocation(
        prepare, [&](IdScene& scene) { scene.config->sliceIdIs(id); },
        [&](IdScene& scene, End end) {
          std::size_t const done = end == End::done ? 1 : 0;
          EXPECT_EQ(scene.config->changeCount(), done);
          EXPECT_EQ(scene.config->sliceId() == id, done == 1);
          for (auto const& witness : scene.witnesses) EXPECT_EQ(witness->told, done);
        });
  }
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
