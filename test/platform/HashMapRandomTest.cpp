#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/mox/HashMap.h"
#include "test/support/KeysOfHash.h"

namespace Mox {
namespace {

class Entry : public HashMapEntry {
 public:
  Entry(String8 key, int id, std::set<int>& alive)
      : HashMapEntry(std::move(key)), id_(id), alive_(alive) {
    alive_.insert(id_);
  }
  ~Entry() override { alive_.erase(id_); }
  int id() const { return id_; }

 private:
  int id_;
  std::set<int>& alive_;
};

/// A map and, beside it, what it should hold: entries by id, in the order that the map promises;
/// and iterators with what they should designate.
class RandomRun {
 public:
  RandomRun(std::uint64_t seed, std::vector<String8> keys)
      : random_(seed), keys_(std::move(keys)) {}

  void insertAll() {
    for (String8 const& key : keys_) insert(key);
    compareAll();
  }

  void steps(int count) {
    for (int i = 0; i < count && !::testing::Test::HasFatalFailure(); ++i) {
      if (i % 2000 == 0) growing_ = below(2) == 0;
      if (i % 500 == 0) compareAll();
      step();
    }
    compareAll();
  }

 private:
  using Place = std::pair<std::uint32_t, String8>;
  struct Walker {
    HashMap<Entry>::IteratorConst it;
    Place place;
    int id;
  };

  std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }
  String8 const& someKey() { return keys_[below(keys_.size())]; }
  static Place placeOf(String8 const& key) { return {key.hash(), key}; }

  void step() {
    std::size_t const kind = below(10);
    if (below(5000) == 0) {
      map_.clear();
      model_.clear();
    } else if (kind < 2 || (kind < 4 && growing_)) {
      insert(someKey());
    } else if (kind < 4) {
      remove(someKey());
    } else if (kind < 5) {
      removeAtWalker();
    } else if (kind < 6) {
      newWalker();
    } else if (kind < 9) {
      stepWalker();
    } else {
      find(someKey());
    }
    ASSERT_EQ(map_.count(), model_.size());
  }

  void insert(String8 const& key) {
    map_.insert(Ptr<Entry>(new Entry(key, ++lastId_, alive_)));
    model_[placeOf(key)] = lastId_;
  }

  void remove(String8 const& key) {
    bool const isThere = model_.erase(placeOf(key)) > 0;
    auto const place = map_.place(key);
    ASSERT_EQ(place.entry() != nullptr, isThere) << key;
    if (isThere) map_.remove(place);
  }

  void removeAtWalker() {
    if (walkers_.empty()) return;
    Walker const& walker = walkers_[below(walkers_.size())];
    auto const found = model_.find(walker.place);
    bool const isThere = found != model_.end() && found->second == walker.id;
    auto const place = map_.place(walker.it);
    ASSERT_EQ(place.entry() != nullptr, isThere) << walker.place.second;
    if (!isThere) return;
    map_.remove(place);
    model_.erase(found);
  }

  void newWalker() {
    if (walkers_.size() == 16) walkers_.erase(walkers_.begin() + static_cast<int>(below(16)));
    if (below(2) == 0) {
      expectAt(map_.iteratorConst(), model_.begin());
    } else {
      String8 const& key = someKey();
      expectAt(map_.iteratorConst(key), model_.find(placeOf(key)));
    }
  }

  void stepWalker() {
    if (walkers_.empty()) return;
    std::size_t const chosen = below(walkers_.size());
    Walker walker = walkers_[chosen];
    walkers_.erase(walkers_.begin() + static_cast<int>(chosen));
    ++walker.it;
    expectAt(walker.it, model_.upper_bound(walker.place));
  }

  /// Keeps the iterator if it designates something.
  void expectAt(HashMap<Entry>::IteratorConst const& it, std::map<Place, int>::iterator expected) {
    ASSERT_EQ(static_cast<bool>(it), expected != model_.end());
    if (!it) return;
    ASSERT_EQ(it.key(), expected->first.second);
    ASSERT_EQ(it->id(), expected->second);
    walkers_.push_back({it, expected->first, expected->second});
  }

  void find(String8 const& key) {
    auto const expected = model_.find(placeOf(key));
    Entry const* const entry = map_.find(key);
    ASSERT_EQ(entry != nullptr, expected != model_.end()) << key;
    if (entry == nullptr) return;
    ASSERT_EQ(entry->id(), expected->second) << key;
  }

  /// The whole content in order; nothing else is alive but what iterators hold.
  void compareAll() {
    std::vector<std::pair<String8, int>> content;
    for (auto it = map_.iteratorConst(); it; ++it) content.emplace_back(it.key(), it->id());
    std::vector<std::pair<String8, int>> expected;
    std::set<int> alive;
    for (auto const& [place, id] : model_) {
      expected.emplace_back(place.second, id);
      alive.insert(id);
    }
    for (Walker const& walker : walkers_) {
      ASSERT_EQ(walker.it->id(), walker.id);
      alive.insert(walker.id);
    }
    ASSERT_EQ(content, expected);
    ASSERT_EQ(alive_, alive);
  }

  std::mt19937_64 random_;
  std::vector<String8> keys_;
  std::set<int> alive_;
  HashMap<Entry> map_;
  std::map<Place, int> model_;
  std::vector<Walker> walkers_;
  int lastId_ = 0;
  bool growing_ = true;
};

std::vector<String8> ordinaryKeys() {
  // Four pairs of keys with one hash each.
  std::vector<String8> keys{"bunaba", "lesuso", "gutoki", "pogale",
                            "setube", "seviza", "bogoka", "vakega"};
  for (int i = 0; i < 1000; ++i) keys.emplace_back("et" + std::to_string(i));
  return keys;
}

/// More than one place in a table may have.
std::vector<String8> crowdedKeys(std::uint32_t step, std::uint32_t hash) {
  std::vector<std::string> const keys =
      Support::KeysOfHash().next(HashTable::mostMoved * 3 / 2, step, hash);
  return {keys.begin(), keys.end()};
}

class HashMapRandomTest : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(HashMapRandomTest, HoldsAndWalksWhatAPlainMapDoes) {
  RandomRun(GetParam(), ordinaryKeys()).steps(40000);
}

TEST_P(HashMapRandomTest, HoldsKeysThatSomebodyHasChosen) {
  for (std::uint32_t const step : {0U, 1U}) {
    RandomRun run(GetParam(),
                  crowdedKeys(step, GetParam() == 1 ? 0xFFFFFFFFU - 3072 * step : 0x20000000U));
    run.steps(1000);
    run.insertAll();
    run.steps(4000);
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, HashMapRandomTest, ::testing::Values(1, 2, 3));

}  // namespace
}  // namespace Mox
