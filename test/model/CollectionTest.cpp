#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "test/model/TestedCollection.h"
#include "test/model/TypedSuites.h"

/// What every collection of both entities does.
namespace Hardware::Kest::Slice {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

struct Row {
  std::string name;
  std::unique_ptr<TestedCollection> (*make)();
};

void PrintTo(Row const& row, std::ostream* out) {
  *out << row.name;
}

template <class... C>
std::vector<Row> rowsOf(testing::Types<C...>) {
  return {{CollectionNames::GetName<C>(0), []() -> std::unique_ptr<TestedCollection> {
             return std::make_unique<TestedCollectionOf<C>>();
           }}...};
}

/// `c` is the collection, with an observer called "a".
class AnyCollection : public testing::TestWithParam<Row> {
 protected:
  std::string event(std::string const& name, std::string const& key) const {
    return name + " " + c.handler() + " " + key;
  }

 private:
  std::unique_ptr<TestedCollection> const collection_ = GetParam().make();

 protected:
  TestedCollection& c = *collection_;
  std::function<void()>& reactionOfA = c.observe("a");
};

INSTANTIATE_TEST_SUITE_P(All, AnyCollection, testing::ValuesIn(rowsOf(AllCollections())),
                         [](auto const& row) { return row.param.name; });

/// What follows tells values by their texts.
TEST_P(AnyCollection, TextsTellItsValuesApart) {
  EXPECT_NE(c.value("et1", 0), c.value("et1", 1));
  EXPECT_NE(c.value("et1", 1), c.value("et1", 2));
}

TEST_P(AnyCollection, AnAbsentKeyReadsAsTheDefaultAndCountsALookup) {
  EXPECT_EQ(c.lookup("et1"), c.none());
  EXPECT_EQ(c.lookup("et1"), c.none());
  EXPECT_EQ(c.lookupCount(), 2U);
  EXPECT_EQ(c.changeCount(), 0U);
  EXPECT_THAT(c.keys(), IsEmpty());
}

TEST_P(AnyCollection, ANewKeyIsStoredCountedAndAnnounced) {
  c.is("et1", 1);
  EXPECT_EQ(c.lookup("et1"), c.value("et1", 1));
  EXPECT_EQ(c.changeCount(), 1U);
  EXPECT_EQ(c.lookupCount(), 1U);
  EXPECT_THAT(c.events, ElementsAre(event("a", "et1")));
}

TEST_P(AnyCollection, TheDefaultValueIsAnEntryToo) {
  c.is("et1", 0);
  EXPECT_THAT(c.keys(), ElementsAre("et1"));
  EXPECT_EQ(c.changeCount(), 1U);
  EXPECT_THAT(c.events, ElementsAre(event("a", "et1")));
}

TEST_P(AnyCollection, AnEqualValueIsSilent) {
  c.is("et1", 1);
  c.takeEvents();
  c.is("et1", 1);
  EXPECT_EQ(c.changeCount(), 1U);
  EXPECT_THAT(c.events, IsEmpty());
}

TEST_P(AnyCollection, ADifferentValueIsUpdatedInTheSameEntry) {
  c.is("et1", 1);
  auto const held = c.newEntry("et2", 1);
  auto const it = c.walk("et2");
  c.takeEvents();
  c.is("et2", 2);
  EXPECT_EQ(held->value(), c.value("et2", 2));
  EXPECT_THAT(it->values(), Each(c.value("et2", 2)));
  EXPECT_EQ(c.lookup("et2"), c.value("et2", 2));
  EXPECT_EQ(c.lookup("et1"), c.value("et1", 1));
  EXPECT_EQ(c.changeCount(), 2U);
  EXPECT_THAT(c.events, ElementsAre(event("a", "et2")));
}

TEST_P(AnyCollection, AnUpdateLeavesTheEntryTheKeyThatItWasMadeWith) {
  auto const held = c.newEntry("et1", 1);
  char const* const chars = held->keyChars();
  c.is("et1", 2);
  EXPECT_EQ(held->value(), c.value("et1", 2));
  EXPECT_EQ(static_cast<void const*>(held->keyChars()), chars);
}

TEST_P(AnyCollection, ALookupReturnsACopy) {
  c.is("et1", 1);
  auto const before = c.heldLookup("et1");
  c.is("et1", 2);
  EXPECT_EQ(before(), c.value("et1", 1));
}

TEST_P(AnyCollection, NewStoresWithoutCountingOrAnnouncing) {
  auto const entry = c.newEntry("et1", 1);
  EXPECT_EQ(entry->key(), "et1");
  EXPECT_EQ(entry->value(), c.value("et1", 1));
  EXPECT_EQ(c.lookup("et1"), c.value("et1", 1));
  EXPECT_EQ(c.changeCount(), 0U);
  EXPECT_THAT(c.events, IsEmpty());
}

TEST_P(AnyCollection, DeletingReturnsTheValueAndIsToldWhenTheKeyIsGone) {
  c.is("et1", 1);
  c.is("et2", 2);
  c.takeEvents();
  std::string seen = c.value("et2", 1);
  std::uint64_t counted = 0;
  reactionOfA = [&] {
    seen = c.lookup("et2");
    counted = c.changeCount();
  };
  EXPECT_EQ(c.del("et2"), c.value("et2", 2));
  EXPECT_EQ(seen, c.none());
  EXPECT_EQ(counted, 3U);  // counted first, then told
  EXPECT_THAT(c.keys(), ElementsAre("et1"));
  EXPECT_THAT(c.events, ElementsAre(event("a", "et2")));
}

TEST_P(AnyCollection, DeletingAnAbsentKeyReturnsTheDefaultAndDoesNothing) {
  c.is("et1", 1);
  c.del("et1");
  c.takeEvents();
  EXPECT_EQ(c.del("et1"), c.none());
  EXPECT_EQ(c.changeCount(), 2U);
  EXPECT_EQ(c.lookupCount(), 0U);
  EXPECT_THAT(c.events, IsEmpty());
}

TEST_P(AnyCollection, AHeldEntryOutlivesItsDeletionUnchanged) {
  auto const held = c.newEntry("et1", 1);
  c.del("et1");
  c.is("et1", 2);
  EXPECT_EQ(held->value(), c.value("et1", 1));
  EXPECT_EQ(held->references(), 1U);
}

TEST_P(AnyCollection, DeletingReturnsTheRemovedValueEvenIfTheKeyIsInsertedMeanwhile) {
  c.is("et1", 1);
  reactionOfA = [&] {
    reactionOfA = nullptr;
    c.is("et1", 2);
  };
  EXPECT_EQ(c.del("et1"), c.value("et1", 1));
  EXPECT_EQ(c.lookup("et1"), c.value("et1", 2));
  EXPECT_EQ(c.changeCount(), 3U);
}

TEST_P(AnyCollection, AnIteratorDeletesTheEntryThatItDesignates) {
  c.is("et1", 1);
  c.is("et2", 2);
  c.takeEvents();
  auto const it = c.walk("et2");
  EXPECT_EQ(c.del(*it), c.value("et2", 2));
  EXPECT_THAT(c.keys(), ElementsAre("et1"));
  EXPECT_EQ(c.changeCount(), 3U);
  EXPECT_THAT(c.takeEvents(), ElementsAre(event("a", "et2")));
}

TEST_P(AnyCollection, AnIteratorThatDesignatesNoEntryDeletesNone) {
  c.is("et1", 1);
  auto const gone = c.walk("et1");
  auto const ended = c.walk("et1");
  ++*ended;
  c.del(*gone);
  c.is("et1", 2);  // under the same key, but not what the iterator designates
  c.takeEvents();
  EXPECT_EQ(c.del(*gone), c.none());
  EXPECT_EQ(c.del(*ended), c.none());
  EXPECT_EQ(c.del(*c.walkOfNothing()), c.none());
  EXPECT_EQ(c.del(*c.walk("et7")), c.none());
  EXPECT_EQ(c.changeCount(), 3U);
  EXPECT_THAT(c.events, IsEmpty());
  EXPECT_EQ(c.lookup("et1"), c.value("et1", 2));
}

TEST_P(AnyCollection, AnIteratorDeletesNothingOfAnotherEntity) {
  std::unique_ptr<TestedCollection> const other = GetParam().make();
  c.is("et1", 1);
  EXPECT_EQ(other->del(*c.walk("et1")), c.none());
  EXPECT_THAT(c.keys(), ElementsAre("et1"));
  EXPECT_EQ(other->changeCount(), 0U);
}

TEST_P(AnyCollection, DeletingAllTellsEachKeyOnceWhenItsEntryIsGone) {
  for (char const* key : {"et1", "et2", "et3"}) c.is(key, 1);
  std::vector<std::string> const order = c.keys();
  c.takeEvents();
  std::vector<std::vector<std::string>> left;
  reactionOfA = [&] { left.push_back(c.keys()); };
  c.delAll();
  EXPECT_THAT(c.events,
              ElementsAre(event("a", order[0]), event("a", order[1]), event("a", order[2])));
  EXPECT_THAT(left, ElementsAre(ElementsAre(order[1], order[2]), ElementsAre(order[2]), IsEmpty()));
  EXPECT_EQ(c.changeCount(), 6U);
}

TEST_P(AnyCollection, DeletingAllOfNothingDoesNothing) {
  c.delAll();
  EXPECT_EQ(c.changeCount(), 0U);
  EXPECT_THAT(c.events, IsEmpty());
}

TEST_P(AnyCollection, DeletingAllGoesOnWhereAnObserverDeletedTheNextEntry) {
  for (char const* key : {"et1", "et2", "et3"}) c.is(key, 1);
  std::vector<std::string> const order = c.keys();
  c.takeEvents();
  reactionOfA = [&] {
    reactionOfA = nullptr;
    c.del(order[1].c_str());
  };
  c.delAll();
  EXPECT_THAT(c.events,
              ElementsAre(event("a", order[0]), event("a", order[1]), event("a", order[2])));
  EXPECT_THAT(c.keys(), IsEmpty());
}

TEST_P(AnyCollection, DeletingAllTakesWhatIsInsertedBehindItsPlaceAndLeavesTheRest) {
  for (char const* key : {"et1", "et2", "et3"}) c.is(key, 1);
  std::vector<std::string> const order = c.keys();
  c.takeEvents();
  c.del(order[0].c_str());
  c.del(order[2].c_str());
  c.takeEvents();
  reactionOfA = [&] {  // told of the middle one
    reactionOfA = nullptr;
    for (std::string const& key : order) c.is(key.c_str(), 2);
  };
  c.delAll();
  EXPECT_THAT(c.events,
              ElementsAre(event("a", order[1]), event("a", order[0]), event("a", order[1]),
                          event("a", order[2]), event("a", order[2])));
  EXPECT_THAT(c.keys(), ElementsAre(order[0], order[1]));
}

TEST_P(AnyCollection, DeletingAllInsideDeletingAllEndsBoth) {
  for (char const* key : {"et1", "et2", "et3"}) c.is(key, 1);
  c.takeEvents();
  reactionOfA = [&] {
    reactionOfA = nullptr;
    c.delAll();
  };
  c.delAll();
  EXPECT_EQ(c.events.size(), 3U);
  EXPECT_EQ(c.changeCount(), 6U);
}

TEST_P(AnyCollection, AnnouncingTellsAnyKeyAndChangesNothing) {
  c.is("et1", 1);
  c.takeEvents();
  c.notify("et1");
  c.notify("nowhere");
  EXPECT_THAT(c.events, ElementsAre(event("a", "et1"), event("a", "nowhere")));
  EXPECT_EQ(c.changeCount(), 1U);
  EXPECT_EQ(c.lookupCount(), 0U);
  EXPECT_THAT(c.keys(), ElementsAre("et1"));
}

TEST_P(AnyCollection, AnExceptionIsReportedWithTheAttributesNumber) {
  c.observe("b");
  reactionOfA = [] { throw std::runtime_error("refused"); };
  c.is("et1", 1);
  std::string const id = std::to_string(c.id());
  EXPECT_THAT(c.events,
              ElementsAre(event("a", "et1"), "a onNotificationException " + id, event("b", "et1")));
  EXPECT_EQ(c.lookup("et1"), c.value("et1", 1));
}

TEST_P(AnyCollection, AnExceptionReachesNobodyWhoDeletesOrAnnounces) {
  c.observe("b");
  for (char const* key : {"et1", "et2", "et3", "et4"}) c.is(key, 1);
  c.takeEvents();
  std::uint64_t const changes = c.changeCount();
  reactionOfA = [] { throw std::runtime_error("refused"); };
  auto const toldOf = [this](std::string const& key) {
    return ElementsAre(event("a", key), "a onNotificationException " + std::to_string(c.id()),
                       event("b", key));
  };
  EXPECT_EQ(c.del("et1"), c.value("et1", 1));
  EXPECT_THAT(c.takeEvents(), toldOf("et1"));
  EXPECT_EQ(c.del(*c.walk("et2")), c.value("et2", 1));
  EXPECT_THAT(c.takeEvents(), toldOf("et2"));
  c.notify("et3");
  EXPECT_THAT(c.takeEvents(), toldOf("et3"));
  EXPECT_EQ(c.changeCount(), changes + 2);

  std::string const last = c.keys().at(1);
  c.delAll();
  EXPECT_THAT(c.keys(), IsEmpty());
  EXPECT_EQ(c.changeCount(), changes + 4);
  Events const told = c.takeEvents();
  ASSERT_EQ(told.size(), 6U);
  EXPECT_THAT(Events(told.begin() + 3, told.end()), toldOf(last));
}

TEST_P(AnyCollection, EveryStringIsAKeyAndKeysAreComparedWhole) {
  std::vector<std::string> const keys{"", " ", "et1", "ET1", "et1/1", std::string("et1\0", 4)};
  for (unsigned n = 0; n < keys.size(); ++n) {
    c.is(Mox::String8(keys[n]), n % values);
  }
  EXPECT_THAT(c.keys(), UnorderedElementsAreArray(keys));
  for (unsigned n = 0; n < keys.size(); ++n) {
    Mox::String8 const key(keys[n]);
    EXPECT_EQ(c.lookup(key), c.value(key, n % values)) << n;
  }
}

TEST_P(AnyCollection, StoresAndCountsWithoutObservers) {
  c.unregisterObservers();
  c.is("et1", 1);
  c.is("et1", 2);
  EXPECT_EQ(c.del("et1"), c.value("et1", 2));
  c.is("et2", 1);
  c.delAll();
  EXPECT_EQ(c.changeCount(), 5U);
  EXPECT_THAT(c.events, IsEmpty());
}

TEST_P(AnyCollection, AChangeInsideANotificationIsToldBeforeTheNextObserver) {
  c.observe("b");
  reactionOfA = [&] {
    reactionOfA = nullptr;
    c.is("et2", 1);
  };
  c.is("et1", 1);
  EXPECT_THAT(c.events, ElementsAre(event("a", "et1"), event("a", "et2"), event("b", "et2"),
                                    event("b", "et1")));
}

TEST_P(AnyCollection, AWalkMeetsEveryEntryThatStaysOnce) {
  for (char const* key : {"et1", "et2", "et3", "et4"}) c.is(key, 1);
  std::vector<std::string> const order = c.keys();
  auto const it = c.walk();
  c.del(order[0].c_str());
  c.del(order[1].c_str());
  for (int i = 0; i < 100; ++i) c.is(("new" + std::to_string(i)).c_str(), 1);
  EXPECT_EQ(it->key(), order[0]);  // held, though gone
  std::multiset<std::string> met;
  for (; *it; ++*it) met.insert(it->key());
  EXPECT_EQ(met.count(order[1]), 0U);
  EXPECT_EQ(met.count(order[2]), 1U);
  EXPECT_EQ(met.count(order[3]), 1U);
  EXPECT_EQ(std::set<std::string>(met.begin(), met.end()).size(), met.size());
}

TEST_P(AnyCollection, OtherCollectionsAreNotTouched) {
  c.is("et1", 1);
  EXPECT_THAT(c.filled(), ElementsAre(c.handler()));
}

}  // namespace
}  // namespace Hardware::Kest::Slice
