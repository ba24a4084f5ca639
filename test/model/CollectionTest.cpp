#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "test/model/TypedSuites.h"

/// What holds for the entries, iterators and keys of every collection. That changes are stored,
/// counted and told is for the random run to show.
namespace Hardware::Kest::Slice {
namespace {

using testing::UnorderedElementsAreArray;

template <class C>
class AnyCollection : public testing::Test {
 protected:
  using Entity = typename C::Entity;

  void set(Mox::String8 const& key, unsigned n) { C::is(*entity, key, C::value(key, n)); }
  Mox::Ptr<typename C::Entry> added(Mox::String8 const& key, unsigned n) {
    return C::newEntry(*entity, key, C::value(key, n));
  }

  Mox::Ptr<Entity> entity{new Entity("slice")};
};
TYPED_TEST_SUITE(AnyCollection, AllCollections, CollectionNames);

TYPED_TEST(AnyCollection, UpdatesTheEntryThatIsThere) {
  auto const entry = this->added("et1", 1);
  auto const it = TypeParam::iterator(*this->entity, "et1");
  this->set("et1", 2);
  auto const updated = TypeParam::value("et1", 2);
  EXPECT_EQ(entry->value(), updated);
  EXPECT_EQ(it.value(), updated);
  EXPECT_EQ(*it, updated);
  EXPECT_EQ(*it.operator->(), updated);
}

TYPED_TEST(AnyCollection, LeavesAHeldEntryAsItWasWhenItIsDeletedOrTheEntityEnds) {
  auto const deleted = this->added("et1", 1);
  auto const last = this->added("et2", 1);
  TypeParam::del(*this->entity, "et1");
  this->set("et1", 2);
  this->entity = nullptr;
  EXPECT_EQ(deleted->key(), "et1");
  EXPECT_EQ(deleted->value(), TypeParam::value("et1", 1));
  EXPECT_EQ(last->value(), TypeParam::value("et2", 1));
  EXPECT_EQ(deleted->references(), 1U);
  EXPECT_EQ(last->references(), 1U);
}

TYPED_TEST(AnyCollection, DeletesOnlyWhatAnIteratorDesignatesStill) {
  using Iterator = typename TypeParam::Iterator;
  this->set("et1", 1);
  Iterator const gone = TypeParam::iterator(*this->entity, "et1");
  Iterator ended = gone;
  ++ended;
  TypeParam::del(*this->entity, gone);
  this->set("et1",
            2);  // under the same key, but not what the iterator designates
  for (Iterator const& it : {gone, ended, Iterator(), TypeParam::iterator(*this->entity, "et7")}) {
    EXPECT_EQ(TypeParam::del(*this->entity, it), typename TypeParam::Value());
  }
  Mox::Ptr<typename TypeParam::Entity> const other(new typename TypeParam::Entity("other"));
  TypeParam::del(*other, TypeParam::iterator(*this->entity, "et1"));
  EXPECT_EQ(TypeParam::lookup(*this->entity, "et1"), TypeParam::value("et1", 2));
  EXPECT_EQ(this->entity->changeCount(), 3U);
  EXPECT_EQ(other->changeCount(), 0U);
}

TYPED_TEST(AnyCollection, TakesEveryStringForAKeyAndComparesKeysWhole) {
  std::vector<Mox::String8> const keys{"",    " ",     "et1",
                                       "ET1", "et1/1", Mox::String8(std::string("et1\0", 4))};
  for (unsigned n = 0; n < keys.size(); ++n) this->set(keys[n], n % values);
  std::vector<Mox::String8> found;
  for (auto it = TypeParam::iterator(*this->entity); it; ++it) found.push_back(it.key());
  EXPECT_THAT(found, UnorderedElementsAreArray(keys));
  for (unsigned n = 0; n < keys.size(); ++n) {
    EXPECT_EQ(TypeParam::lookup(*this->entity, keys[n]), TypeParam::value(keys[n], n % values));
  }
}

TYPED_TEST(AnyCollection, MayBeGivenItsOwnEntry) {
  auto const entry = this->added("et1", 1);
  TypeParam::is(*this->entity, entry->key(), entry->value());
  EXPECT_EQ(this->entity->changeCount(), 0U);
  TypeParam::newEntry(*this->entity, entry->key(),
                      entry->value());  // replaces the entry
  EXPECT_EQ(TypeParam::lookup(*this->entity, "et1"), entry->value());
  EXPECT_EQ(entry->references(), 1U);
}

}  // namespace
}  // namespace Hardware::Kest::Slice
