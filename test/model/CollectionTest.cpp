#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "test/model/Recorder.h"
#include "test/model/TypedSuites.h"

/// What every collection of both entities does.
namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class Collection>
class AnyCollection : public testing::Test {
 protected:
  using C = Collection;
  using Entity = typename C::Entity;
  using Value = typename C::Value;

  static Value value(Mox::String8 const& key, unsigned n) { return C::value(key, n); }
  static std::string event(std::string const& name, std::string const& key) {
    return name + " " + C::handler + " " + key;
  }

  void is(Mox::String8 const& key, unsigned n) { C::is(*entity, key, value(key, n)); }
  Value lookup(Mox::String8 const& key) const { return C::lookup(*entity, key); }

  std::set<std::string> keys() const {
    std::set<std::string> found;
    for (auto it = C::iterator(*entity); it; ++it) found.emplace(it.key().view());
    return found;
  }
  std::vector<std::string> keysInOrder() const {
    std::vector<std::string> found;
    for (auto it = C::iterator(*entity); it; ++it) found.emplace_back(it.key().view());
    return found;
  }

  Events takeEvents() { return std::exchange(events, {}); }

  Events events;
  Mox::Ptr<Entity> entity{new Entity("slice")};
  Mox::Ptr<Recorder<Entity>> a = observe(entity, "a", events);
};

TYPED_TEST_SUITE(AnyCollection, AllCollections, CollectionNames);

TYPED_TEST(AnyCollection, AnAbsentKeyReadsAsTheDefaultAndCountsALookup) {
  EXPECT_EQ(this->lookup("et1"), typename TypeParam::Value());
  EXPECT_EQ(this->lookup("et1"), typename TypeParam::Value());
  EXPECT_EQ(this->entity->lookupCount(), 2U);
  EXPECT_EQ(this->entity->changeCount(), 0U);
  EXPECT_THAT(this->keys(), IsEmpty());
}

TYPED_TEST(AnyCollection, ANewKeyIsStoredCountedAndAnnounced) {
  this->is("et1", 1);
  EXPECT_EQ(this->lookup("et1"), this->value("et1", 1));
  EXPECT_EQ(this->entity->changeCount(), 1U);
  EXPECT_EQ(this->entity->lookupCount(), 1U);
  EXPECT_THAT(this->events, ElementsAre(this->event("a", "et1")));
}

TYPED_TEST(AnyCollection, TheDefaultValueIsAnEntryToo) {
  this->is("et1", 0);
  EXPECT_THAT(this->keys(), ElementsAre("et1"));
  EXPECT_EQ(this->entity->changeCount(), 1U);
  EXPECT_THAT(this->events, ElementsAre(this->event("a", "et1")));
}

TYPED_TEST(AnyCollection, AnEqualValueIsSilent) {
  this->is("et1", 1);
  this->takeEvents();
  this->is("et1", 1);
  EXPECT_EQ(this->entity->changeCount(), 1U);
  EXPECT_THAT(this->events, IsEmpty());
}

TYPED_TEST(AnyCollection, ADifferentValueIsUpdatedInTheSameEntry) {
  this->is("et1", 1);
  auto const held = TypeParam::newEntry(*this->entity, "et2", this->value("et2", 1));
  auto const it = TypeParam::iterator(*this->entity, "et2");
  this->takeEvents();
  this->is("et2", 2);
  EXPECT_EQ(held->value(), this->value("et2", 2));
  EXPECT_EQ(*it, this->value("et2", 2));
  EXPECT_EQ(it.value(), this->value("et2", 2));
  EXPECT_EQ(*it.operator->(), this->value("et2", 2));
  EXPECT_EQ(this->lookup("et2"), this->value("et2", 2));
  EXPECT_EQ(this->lookup("et1"), this->value("et1", 1));
  EXPECT_EQ(this->entity->changeCount(), 2U);
  EXPECT_THAT(this->events, ElementsAre(this->event("a", "et2")));
}

TYPED_TEST(AnyCollection, ALookupReturnsACopy) {
  this->is("et1", 1);
  auto const before = this->lookup("et1");
  this->is("et1", 2);
  EXPECT_EQ(before, this->value("et1", 1));
}

TYPED_TEST(AnyCollection, NewStoresWithoutCountingOrAnnouncing) {
  auto const entry = TypeParam::newEntry(*this->entity, "et1", this->value("et1", 1));
  EXPECT_EQ(entry->key(), "et1");
  EXPECT_EQ(entry->value(), this->value("et1", 1));
  EXPECT_EQ(this->lookup("et1"), this->value("et1", 1));
  EXPECT_EQ(this->entity->changeCount(), 0U);
  EXPECT_THAT(this->events, IsEmpty());
}

TYPED_TEST(AnyCollection, DeletingReturnsTheValueAndIsToldWhenTheKeyIsGone) {
  this->is("et1", 1);
  this->is("et2", 2);
  this->takeEvents();
  typename TypeParam::Value seen = this->value("et2", 1);
  std::uint64_t counted = 0;
  this->a->reaction = [&] {
    seen = this->lookup("et2");
    counted = this->entity->changeCount();
  };
  EXPECT_EQ(TypeParam::del(*this->entity, "et2"), this->value("et2", 2));
  EXPECT_EQ(seen, typename TypeParam::Value());
  EXPECT_EQ(counted, 3U);  // counted first, then told
  EXPECT_THAT(this->keys(), ElementsAre("et1"));
  EXPECT_THAT(this->events, ElementsAre(this->event("a", "et2")));
}

TYPED_TEST(AnyCollection, DeletingAnAbsentKeyReturnsTheDefaultAndDoesNothing) {
  this->is("et1", 1);
  TypeParam::del(*this->entity, "et1");
  this->takeEvents();
  EXPECT_EQ(TypeParam::del(*this->entity, "et1"), typename TypeParam::Value());
  EXPECT_EQ(this->entity->changeCount(), 2U);
  EXPECT_EQ(this->entity->lookupCount(), 0U);
  EXPECT_THAT(this->events, IsEmpty());
}

TYPED_TEST(AnyCollection, AHeldEntryOutlivesItsDeletionUnchanged) {
  auto const held = TypeParam::newEntry(*this->entity, "et1", this->value("et1", 1));
  TypeParam::del(*this->entity, "et1");
  this->is("et1", 2);
  EXPECT_EQ(held->value(), this->value("et1", 1));
  EXPECT_EQ(held->references(), 1U);
}

TYPED_TEST(AnyCollection, DeletingReturnsTheRemovedValueEvenIfTheKeyIsInsertedMeanwhile) {
  this->is("et1", 1);
  this->a->reaction = [&] {
    this->a->reaction = nullptr;
    this->is("et1", 2);
  };
  EXPECT_EQ(TypeParam::del(*this->entity, "et1"), this->value("et1", 1));
  EXPECT_EQ(this->lookup("et1"), this->value("et1", 2));
  EXPECT_EQ(this->entity->changeCount(), 3U);
}

TYPED_TEST(AnyCollection, AnIteratorDeletesTheEntryThatItDesignates) {
  this->is("et1", 1);
  this->is("et2", 2);
  this->takeEvents();
  auto const it = TypeParam::iterator(*this->entity, "et2");
  EXPECT_EQ(TypeParam::del(*this->entity, it), this->value("et2", 2));
  EXPECT_THAT(this->keys(), ElementsAre("et1"));
  EXPECT_EQ(this->entity->changeCount(), 3U);
  EXPECT_THAT(this->takeEvents(), ElementsAre(this->event("a", "et2")));
}

TYPED_TEST(AnyCollection, AnIteratorThatDesignatesNoEntryDeletesNone) {
  this->is("et1", 1);
  auto const gone = TypeParam::iterator(*this->entity, "et1");
  auto ended = gone;
  ++ended;
  TypeParam::del(*this->entity, gone);
  this->is("et1", 2);  // under the same key, but not what the iterator designates
  this->takeEvents();
  typename TypeParam::Value const none{};
  EXPECT_EQ(TypeParam::del(*this->entity, gone), none);
  EXPECT_EQ(TypeParam::del(*this->entity, ended), none);
  EXPECT_EQ(TypeParam::del(*this->entity, typename TypeParam::Iterator()), none);
  EXPECT_EQ(TypeParam::del(*this->entity, TypeParam::iterator(*this->entity, "et7")), none);
  EXPECT_EQ(this->entity->changeCount(), 3U);
  EXPECT_THAT(this->events, IsEmpty());
  EXPECT_EQ(this->lookup("et1"), this->value("et1", 2));
}

TYPED_TEST(AnyCollection, AnIteratorDeletesNothingOfAnotherEntity) {
  Mox::Ptr<typename TypeParam::Entity> const other(new typename TypeParam::Entity("other"));
  this->is("et1", 1);
  EXPECT_EQ(TypeParam::del(*other, TypeParam::iterator(*this->entity, "et1")),
            typename TypeParam::Value());
  EXPECT_THAT(this->keys(), ElementsAre("et1"));
  EXPECT_EQ(other->changeCount(), 0U);
}

TYPED_TEST(AnyCollection, DeletingAllTellsEachKeyOnceWhenItsEntryIsGone) {
  for (char const* key : {"et1", "et2", "et3"}) this->is(key, 1);
  std::vector<std::string> const order = this->keysInOrder();
  this->takeEvents();
  std::vector<std::vector<std::string>> left;
  this->a->reaction = [&] { left.push_back(this->keysInOrder()); };
  TypeParam::delAll(*this->entity);
  EXPECT_THAT(this->events, ElementsAre(this->event("a", order[0]), this->event("a", order[1]),
                                        this->event("a", order[2])));
  EXPECT_THAT(left, ElementsAre(ElementsAre(order[1], order[2]), ElementsAre(order[2]), IsEmpty()));
  EXPECT_EQ(this->entity->changeCount(), 6U);
}

TYPED_TEST(AnyCollection, DeletingAllOfNothingDoesNothing) {
  TypeParam::delAll(*this->entity);
  EXPECT_EQ(this->entity->changeCount(), 0U);
  EXPECT_THAT(this->events, IsEmpty());
}

TYPED_TEST(AnyCollection, DeletingAllGoesOnWhereAnObserverDeletedTheNextEntry) {
  for (char const* key : {"et1", "et2", "et3"}) this->is(key, 1);
  std::vector<std::string> const order = this->keysInOrder();
  this->takeEvents();
  this->a->reaction = [&] {
    this->a->reaction = nullptr;
    TypeParam::del(*this->entity, order[1].c_str());
  };
  TypeParam::delAll(*this->entity);
  EXPECT_THAT(this->events, ElementsAre(this->event("a", order[0]), this->event("a", order[1]),
                                        this->event("a", order[2])));
  EXPECT_THAT(this->keys(), IsEmpty());
}

TYPED_TEST(AnyCollection, DeletingAllTakesWhatIsInsertedBehindItsPlaceAndLeavesTheRest) {
  for (char const* key : {"et1", "et2", "et3"}) this->is(key, 1);
  std::vector<std::string> const order = this->keysInOrder();
  this->takeEvents();
  TypeParam::del(*this->entity, order[0].c_str());
  TypeParam::del(*this->entity, order[2].c_str());
  this->takeEvents();
  this->a->reaction = [&] {  // told of the middle one
    this->a->reaction = nullptr;
    for (std::string const& key : order) this->is(key.c_str(), 2);
  };
  TypeParam::delAll(*this->entity);
  EXPECT_THAT(this->events, ElementsAre(this->event("a", order[1]), this->event("a", order[0]),
                                        this->event("a", order[1]), this->event("a", order[2]),
                                        this->event("a", order[2])));
  EXPECT_THAT(this->keysInOrder(), ElementsAre(order[0], order[1]));
}

TYPED_TEST(AnyCollection, DeletingAllInsideDeletingAllEndsBoth) {
  for (char const* key : {"et1", "et2", "et3"}) this->is(key, 1);
  this->takeEvents();
  this->a->reaction = [&] {
    this->a->reaction = nullptr;
    TypeParam::delAll(*this->entity);
  };
  TypeParam::delAll(*this->entity);
  EXPECT_EQ(this->events.size(), 3U);
  EXPECT_EQ(this->entity->changeCount(), 6U);
}

TYPED_TEST(AnyCollection, AnnouncingTellsAnyKeyAndChangesNothing) {
  this->is("et1", 1);
  this->takeEvents();
  TypeParam::notify(*this->entity, "et1");
  TypeParam::notify(*this->entity, "nowhere");
  EXPECT_THAT(this->events, ElementsAre(this->event("a", "et1"), this->event("a", "nowhere")));
  EXPECT_EQ(this->entity->changeCount(), 1U);
  EXPECT_EQ(this->entity->lookupCount(), 0U);
  EXPECT_THAT(this->keys(), ElementsAre("et1"));
}

TYPED_TEST(AnyCollection, AnExceptionIsReportedWithTheAttributesNumber) {
  auto const b = observe(this->entity, "b", this->events);
  this->a->reaction = [] { throw std::runtime_error("refused"); };
  this->is("et1", 1);
  std::string const id = std::to_string(switchPortId<typename TypeParam::Entity> +
                                        static_cast<Mox::AttributeId>(TypeParam::index));
  EXPECT_THAT(this->events, ElementsAre(this->event("a", "et1"), "a onNotificationException " + id,
                                        this->event("b", "et1")));
  EXPECT_EQ(this->lookup("et1"), this->value("et1", 1));
}

TYPED_TEST(AnyCollection, EveryStringIsAKeyAndKeysAreComparedWhole) {
  std::vector<Mox::String8> const keys{"",    " ",     "et1",
                                       "ET1", "et1/1", Mox::String8(std::string_view("et1\0", 4))};
  for (unsigned n = 0; n < keys.size(); ++n) {
    TypeParam::is(*this->entity, keys[n], TypeParam::value(keys[n], n % values));
  }
  EXPECT_EQ(this->keys().size(), keys.size());
  for (unsigned n = 0; n < keys.size(); ++n) {
    EXPECT_EQ(this->lookup(keys[n]), TypeParam::value(keys[n], n % values)) << n;
  }
}

TYPED_TEST(AnyCollection, StoresAndCountsWithoutObservers) {
  this->a->isRegisteredNotifieeIs(false);
  this->is("et1", 1);
  this->is("et1", 2);
  EXPECT_EQ(TypeParam::del(*this->entity, "et1"), this->value("et1", 2));
  this->is("et2", 1);
  TypeParam::delAll(*this->entity);
  EXPECT_EQ(this->entity->changeCount(), 5U);
  EXPECT_THAT(this->events, IsEmpty());
}

TYPED_TEST(AnyCollection, AChangeInsideANotificationIsToldBeforeTheNextObserver) {
  auto const b = observe(this->entity, "b", this->events);
  this->a->reaction = [&] {
    this->a->reaction = nullptr;
    this->is("et2", 1);
  };
  this->is("et1", 1);
  EXPECT_THAT(this->events, ElementsAre(this->event("a", "et1"), this->event("a", "et2"),
                                        this->event("b", "et2"), this->event("b", "et1")));
}

TYPED_TEST(AnyCollection, AWalkMeetsEveryEntryThatStaysOnce) {
  for (char const* key : {"et1", "et2", "et3", "et4"}) this->is(key, 1);
  std::vector<std::string> const order = this->keysInOrder();
  auto it = TypeParam::iterator(*this->entity);
  TypeParam::del(*this->entity, order[0].c_str());
  TypeParam::del(*this->entity, order[1].c_str());
  for (int i = 0; i < 100; ++i) this->is(("new" + std::to_string(i)).c_str(), 1);
  EXPECT_EQ(it.key(), order[0].c_str());  // held, though gone
  std::multiset<std::string> met;
  for (; it; ++it) met.emplace(it.key().view());
  EXPECT_EQ(met.count(order[1]), 0U);
  EXPECT_EQ(met.count(order[2]), 1U);
  EXPECT_EQ(met.count(order[3]), 1U);
  EXPECT_EQ(std::set<std::string>(met.begin(), met.end()).size(), met.size());
}

TYPED_TEST(AnyCollection, OtherCollectionsAreNotTouched) {
  this->is("et1", 1);
  forEachCollectionOf<typename TypeParam::Entity>([&](auto other) {
    bool const same = other.index == TypeParam::index;
    EXPECT_EQ(static_cast<bool>(other.iterator(*this->entity)), same) << other.handler;
  });
}

}  // namespace
}  // namespace Hardware::Kest::Slice
