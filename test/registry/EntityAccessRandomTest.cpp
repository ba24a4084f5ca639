#include <gtest/gtest.h>

#include <random>

#include "registry/DeviceStateType.h"
#include "registry/EntityTypes.h"
#include "test/model/RandomSteps.h"
#include "test/model/Recorder.h"
#include "test/model/TypedSuites.h"
#include "test/registry/Access.h"

namespace Hardware::Kest::Slice {
namespace {

using Mox::genericOf;

/// Two entities of a type, one used directly, the other by name alone. Each has two observers; one
/// of them also looks at what changed.
template <class Entity>
class EntityAccessRandomTest : public testing::Test {
 protected:
  struct Side {
    Mox::Ptr<Entity> entity{new Entity("entity")};
    Events events;
    Mox::Ptr<Recorder<Entity>> first = observe(entity, "first", events);
    Mox::Ptr<Recorder<Entity>> second = observe(entity, "second", events);
    std::vector<std::string> heard;
  };

  /// One step on one collection, on both sides.
  template <class C>
  void step(C collection) {
    Mox::String8 const& key = keyPool()[below(keys)];
    typename C::Value const value = C::value(key, below(distinct<C>));
    Mox::AttributeId const id = switchPortId<Entity> + collection.index;
    Generic const index = genericOf(key);
    switch (below(4)) {
      case 0:
        C::is(*direct.entity, key, value);
        operate(*generic, {id, Code::store, index.get()}, genericOf(value).get());
        break;
      case 1:
        compare<C>(C::del(*direct.entity, key), operate(*generic, {id, Code::remove, index.get()}));
        break;
      case 2:
        C::notify(*direct.entity, key);
        operate(*generic, {id, Code::notify, index.get()});
        break;
      default:
        compare<C>(C::lookup(*direct.entity, key),
                   operate(*generic, {id, Code::read, index.get()}));
    }
  }

  template <class C>
  static void compare(typename C::Value const& direct, Generic const& byName) {
    EXPECT_EQ(valueOf<typename C::Value>(byName), direct);
  }

  void sliceIdStep() {
    if constexpr (std::is_same_v<Entity, KestSliceDmaConfig>) {
      Mox::String8 const& value = keyPool()[below(3)];
      direct.entity->sliceIdIs(value);
      store(*generic, "sliceId", genericOf(value));
      EXPECT_EQ(valueOf<Mox::String8>(read(*generic, "sliceId")), direct.entity->sliceId());
    }
  }

  void randomStep() {
    unsigned const which = below(collections + 1);
    if (which == collections) sliceIdStep();
    forEachCollectionOf<Entity>([&](auto collection) {
      if (collection.index == which) step(collection);
    });
  }

  void expectSame() const {
    ASSERT_EQ(byName.events, direct.events);
    ASSERT_EQ(byName.entity->changeCount(), direct.entity->changeCount());
    ASSERT_EQ(byName.entity->lookupCount(), direct.entity->lookupCount());
  }

  void expectSameContent() const {
    forEachCollectionOf<Entity>([&](auto collection) {
      using C = decltype(collection);
      auto other = C::iterator(*byName.entity);
      for (auto it = C::iterator(*direct.entity); it; ++it, ++other) {
        ASSERT_TRUE(other);
        ASSERT_EQ(other.key(), it.key());
        ASSERT_EQ(other.value(), it.value());
      }
      ASSERT_FALSE(other);
    });
  }

  unsigned below(unsigned bound) { return static_cast<unsigned>(random_() % bound); }

  Side direct;
  Side byName;
  Generic generic = genericOf(byName.entity);

 private:
  std::mt19937_64 random_{20240202};
};

using Entities = testing::Types<KestSliceDmaConfig, KestSliceDmaStatus>;
TYPED_TEST_SUITE(EntityAccessRandomTest, Entities, EntityNames);

TYPED_TEST(EntityAccessRandomTest, WhatIsDoneByNameIsWhatIsDoneDirectly) {
  std::size_t told = 0;
  for (unsigned n = 0; n < 20000; ++n) {
    this->randomStep();
    this->expectSame();
    if (n % 100 == 0) this->expectSameContent();
    ASSERT_FALSE(this->HasFailure()) << "at step " << n;
    told += this->direct.events.size();
    this->direct.events.clear();
    this->byName.events.clear();
  }
  this->expectSameContent();
  EXPECT_GT(told, 10000U);
  EXPECT_GT(this->direct.entity->changeCount(), 5000U);
}

}  // namespace
}  // namespace Hardware::Kest::Slice
