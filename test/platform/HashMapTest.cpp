#include "platform/mox/HashMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "test/platform/Journaled.h"
#include "test/support/KeysOfHash.h"

namespace Mox {
namespace {

using Test::Events;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class NamedEntry : public HashMapEntry {
 public:
  NamedEntry(Events& events, String8 key, std::string name)
      : HashMapEntry(std::move(key)), events_(events), name_(std::move(name)) {}
  ~NamedEntry() override {
    events_.push_back(name_ + " gone");
    if (whenGone) whenGone();
  }

  std::string const& name() const { return name_; }

  std::function<void()> whenGone;
  Ptr<NamedEntry> successor;

 private:
  Events& events_;
  std::string name_;
};

class HashMapTest : public ::testing::Test {
 protected:
  Ptr<NamedEntry> insert(char const* key, char const* name = "") {
    Ptr<NamedEntry> entry(new NamedEntry(events, key, *name == '\0' ? key : name));
    map.insert(entry);
    return entry;
  }

  std::vector<std::string> walk() const {
    std::vector<std::string> names;
    for (auto it = map.iteratorConst(); it; ++it) names.push_back(it->name());
    return names;
  }

  Events events;
  HashMap<NamedEntry> map;
};

TEST_F(HashMapTest, IsEmptyAtFirst) {
  EXPECT_EQ(map.count(), 0U);
  EXPECT_EQ(map.find("et1"), nullptr);
  EXPECT_FALSE(map.iteratorConst());
  EXPECT_FALSE(map.iteratorConst("et1"));
}

TEST_F(HashMapTest, FindsWhatWasInserted) {
  Ptr<NamedEntry> const first = insert("et1");
  insert("et2");
  insert("");
  EXPECT_EQ(map.count(), 3U);
  EXPECT_EQ(map.find("et1"), first.ptr());
  EXPECT_EQ(map.find("")->name(), "");
  EXPECT_EQ(map.find("et3"), nullptr);
}

TEST_F(HashMapTest, HoldsOneReferenceToEachEntry) {
  Ptr<NamedEntry> const held = insert("held");
  insert("loose");
  EXPECT_EQ(held->references(), 2U);
  map.clear();
  EXPECT_THAT(events, ElementsAre("loose gone"));
  EXPECT_EQ(held->references(), 1U);
  EXPECT_EQ(map.count(), 0U);
}

TEST_F(HashMapTest, AnEntryLeavesForOneOfTheSameKey) {
  insert("et1", "old");
  Ptr<NamedEntry> const now = insert("et1", "new");
  EXPECT_THAT(events, ElementsAre("old gone"));
  EXPECT_EQ(map.count(), 1U);
  EXPECT_EQ(map.find("et1"), now.ptr());
}

TEST_F(HashMapTest, IsWholeWhenAReplacedEntryGoes) {
  std::string found;
  insert("et1", "old")->whenGone = [&] {
    found = map.find("et1")->name() + ", " + std::to_string(map.count());
  };
  insert("et1", "new");
  EXPECT_EQ(found, "new, 1");
}

TEST_F(HashMapTest, AnEntryMayBeReplacedByOneThatOnlyItHolds) {
  NamedEntry& old = *insert("et1", "old");
  old.successor = Ptr<NamedEntry>(new NamedEntry(events, "et1", "successor"));
  map.insert(old.successor);
  EXPECT_THAT(walk(), ElementsAre("successor"));
}

TEST_F(HashMapTest, ClearsAlsoWhatGoingEntriesBringIn) {
  ASSERT_LT(String8("et3").hash(), String8("lesuso").hash());  // brought in after the clearing
  insert("lesuso")->whenGone = [this] { insert("et3"); };
  map.clear();
  EXPECT_EQ(map.count(), 0U);
  EXPECT_THAT(events, ElementsAre("lesuso gone", "et3 gone"));
}

TEST_F(HashMapTest, HoldsKeysAtBothEndsOfTheHashes) {
  // Two keys share each end: the hash of one is moved there, since it says that there is none.
  std::string const zero = Support::KeysOfHash().next(0), one = Support::KeysOfHash().next(1);
  std::string const last = Support::KeysOfHash().next(0xFFFFFFFEU);
  std::string const empty = Support::KeysOfHash().next(0xFFFFFFFFU);
  std::vector<std::string> const expected{std::min(zero, one), std::max(zero, one),
                                          std::min(last, empty), std::max(last, empty)};
  for (std::string const& key : {empty, last, one, zero}) insert(key.c_str());
  EXPECT_EQ(walk(), expected);
  for (std::string const& key : expected) {
    map.remove(String8(key));
    EXPECT_EQ(map.find(String8(key)), nullptr);
  }
  EXPECT_EQ(map.count(), 0U);
}

/// More keys of one hash than its table takes.
class CrowdedHashMapTest : public HashMapTest {
 protected:
  CrowdedHashMapTest() {
    std::sort(keys.begin(), keys.end());
    for (std::string const& key : keys) insert(key.c_str());
  }

  std::vector<std::string> keys =
      Support::KeysOfHash().next(HashTable::mostMoved + 2, 0);  // in the map's order
};

TEST_F(CrowdedHashMapTest, IsWalkedInOrderByAnIteratorFromBefore) {
  map.clear();
  insert(keys[0].c_str());
  auto it = map.iteratorConst();
  for (std::string const& key : keys) insert(key.c_str());
  map.remove(String8(keys[1]));
  ++it;
  EXPECT_EQ(it->name(), keys[2]);
  map.remove(it.key());
  ++it;
  EXPECT_EQ(it->name(), keys[3]);
  keys.erase(keys.begin() + 1, keys.begin() + 3);
  EXPECT_EQ(walk(), keys);
}

TEST_F(CrowdedHashMapTest, ReplacesAnEntryWhichMayLookAtTheMap) {
  insert(keys[5].c_str(), "old")->whenGone = [this] {
    EXPECT_EQ(map.find(String8(keys[5]))->name(), "new");
  };
  insert(keys[5].c_str(), "new");
  EXPECT_EQ(events.back(), "old gone");
  EXPECT_EQ(map.count(), keys.size());
}

TEST_F(CrowdedHashMapTest, ClearsAlsoWhatGoingEntriesBringIn) {
  insert(keys[7].c_str())->whenGone = [this] { insert("et3"); };
  map.clear();
  EXPECT_EQ(map.count(), 0U);
  EXPECT_EQ(events.back(), "et3 gone");
}

TEST_F(CrowdedHashMapTest, IsAnOrdinaryOneAgainOnceItIsEmpty) {
  for (std::string const& key : keys) map.remove(String8(key));
  EXPECT_EQ(map.count(), 0U);
  EXPECT_FALSE(map.iteratorConst());
  insert("et1");
  EXPECT_THAT(walk(), ElementsAre("et1"));
}

TEST_F(HashMapTest, OrderIsThatOfTheHashesThenOfTheKeysWhateverTheInsertionOrder) {
  // "bunaba" and "lesuso" have one hash, "setube" and "seviza" another.
  std::vector<String8> expected = {"seviza", "et2", "lesuso", "setube", "et1", "bunaba"};
  for (String8 const& key : expected) insert(key.charPtr());
  std::sort(expected.begin(), expected.end(), [](String8 const& a, String8 const& b) {
    return a.hash() != b.hash() ? a.hash() < b.hash() : a < b;
  });
  std::vector<String8> walked;
  for (auto it = map.iteratorConst(); it; ++it) walked.push_back(it.key());
  EXPECT_EQ(walked, expected);
}

TEST_F(HashMapTest, IteratorStartsAtAKeyAndWalksToTheEnd) {
  for (char const* key : {"et1", "et2", "et3", "et4"}) insert(key);
  std::vector<std::string> const all = walk();
  auto it = map.iteratorConst(all[2].c_str());
  ASSERT_TRUE(it);
  EXPECT_EQ(it->name(), all[2]);
  ++it;
  EXPECT_EQ((*it).name(), all[3]);
  ++it;
  EXPECT_FALSE(it);
}

TEST_F(HashMapTest, AnIteratorKeepsItsEntryWhichIsNoLongerTheMaps) {
  insert("et1");
  auto it = map.iteratorConst();
  EXPECT_EQ(&*it, map.remove("et1").ptr());
  EXPECT_THAT(events, IsEmpty());
  EXPECT_EQ(it->name(), "et1");
  ++it;
  EXPECT_FALSE(it);
  EXPECT_THAT(events, ElementsAre("et1 gone"));
}

TEST_F(HashMapTest, AnIteratorPassesAKeyThatCameBackUnderAnotherEntry) {
  for (char const* key : {"et1", "et2", "et3"}) insert(key);
  std::vector<std::string> const all = walk();
  auto it = map.iteratorConst();
  map.remove(all[0].c_str());
  insert(all[0].c_str(), "again");
  ++it;
  EXPECT_EQ(it->name(), all[1]);
}

TEST_F(HashMapTest, AnIteratorFindsItsPlaceAgainWhenTheMapGrows) {
  for (char const* key : {"et1", "et2", "et3"}) insert(key);
  std::vector<std::string> seen = {map.iteratorConst()->name()};
  auto it = map.iteratorConst();
  for (int i = 0; i < 100; ++i) insert(("new" + std::to_string(i)).c_str());
  for (++it; it; ++it) {
    if (it->name().starts_with("et")) seen.push_back(it->name());
  }
  EXPECT_THAT(seen, UnorderedElementsAre("et1", "et2", "et3"));
}

TEST_F(HashMapTest, AnEntryThatLeftMayJoinAnotherMap) {
  Ptr<NamedEntry> const entry = insert("et1");
  map.remove(entry->key());
  HashMap<NamedEntry> other;
  other.insert(entry);
  EXPECT_EQ(other.find("et1"), entry.ptr());
  EXPECT_EQ(map.find("et1"), nullptr);
}

}  // namespace
}  // namespace Mox
