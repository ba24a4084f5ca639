#include "platform/mox/HashTable.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "platform/mox/Ptr.h"

namespace Mox {
namespace {

class Thing : public PtrInterface {};

struct Place {
  std::uint32_t hash;
  PtrInterface* object;
  friend bool operator==(Place const&, Place const&) = default;
};

std::vector<Place> contentOf(HashTable const& table) {
  std::vector<Place> content;
  for (std::size_t slot = table.occupiedFrom(0); slot < table.slots();
       slot = table.occupiedFrom(slot + 1)) {
    content.push_back({table.hash(slot), table.object(slot)});
  }
  return content;
}

/// A table and, beside it, what it should hold in order.
class HashTableTest : public ::testing::Test {
 protected:
  /// Behind `rank` others of that hash, or as many as there are.
  void insert(std::uint32_t hash, std::size_t rank) {
    Ptr<Thing> const thing(new Thing);
    std::size_t at = 0;
    while (at < model.size() && model[at].hash < hash) ++at;
    std::size_t slot = table.slots() == 0 ? 0 : table.lowerBound(hash);
    for (; rank > 0 && at < model.size() && model[at].hash == hash; --rank, ++at, ++slot) {
    }
    ASSERT_TRUE(table.insert(slot, hash, *thing));
    model.insert(model.begin() + static_cast<std::ptrdiff_t>(at), {hash, thing.ptr()});
  }

  void remove(std::size_t number) {
    std::size_t slot = table.occupiedFrom(0);
    for (std::size_t i = 0; i < number; ++i) slot = table.occupiedFrom(slot + 1);
    table.remove(slot);
    model.erase(model.begin() + static_cast<std::ptrdiff_t>(number));
  }

  void expectAsModel() {
    ASSERT_EQ(table.count(), model.size());
    ASSERT_TRUE(contentOf(table) == model);
    for (Place const& place : model) {  // each is found from its home on
      std::size_t const slot = table.lowerBound(place.hash);
      ASSERT_EQ(table.hash(slot), place.hash);
      ASSERT_EQ(place.object->references(), 1U);
    }
  }

  HashTable table;
  std::vector<Place> model;
};

TEST_F(HashTableTest, TakesManyObjectsOfOneHashBehindTheLastHome) {
  for (std::size_t i = 0; i < 300; ++i) insert(0xFFFFFFFEU, i % 7);
  expectAsModel();
  for (std::size_t i = 300; i > 0; --i) remove(i * 31 % i);
  expectAsModel();
}

TEST_F(HashTableTest, TakesNoObjectFarFromItsHome) {
  for (std::size_t i = 0; i < HashTable::mostMoved; ++i) insert(static_cast<std::uint32_t>(i), 0);
  expectAsModel();
  Ptr<Thing> const thing(new Thing);
  std::uint32_t const last = HashTable::mostMoved;
  EXPECT_FALSE(table.insert(table.lowerBound(last), last, *thing));
  EXPECT_FALSE(table.insert(table.lowerBound(0), 0, *thing));  // it would push all others along
  EXPECT_EQ(thing->references(), 1U);
  expectAsModel();
}

TEST_F(HashTableTest, KeepsOrderOverAnyInsertionsAndRemovals) {
  std::mt19937_64 random(7);  // NOLINT(cert-msc51-cpp): the same run each time
  // Hashes of a few homes, where they push each other along, and of all of them.
  for (std::uint32_t const step : {1U, 0x01000000U, 0x00100000U, 0x12345677U}) {
    for (int i = 0; i < 3000; ++i) {
      bool const grows = i / 500 % 2 == 0;
      if (model.empty() || random() % 4 < (grows ? 3U : 1U)) {
        insert(static_cast<std::uint32_t>(random() % 64) * step, random() % 3);
      } else {
        remove(random() % model.size());
      }
      if (i % 50 == 0) expectAsModel();
    }
    expectAsModel();
  }
}

TEST_F(HashTableTest, ReplacesAnObjectInItsPlace) {
  for (std::size_t i = 0; i < 3; ++i) insert(5, i);
  Ptr<Thing> const thing(new Thing);
  table.replace(table.lowerBound(5) + 1, *thing);
  model[1].object = thing.ptr();
  EXPECT_TRUE(contentOf(table) == model);
  EXPECT_EQ(thing->references(), 2U);
}

}  // namespace
}  // namespace Mox
