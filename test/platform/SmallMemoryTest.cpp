#include "platform/mox/SmallMemory.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "platform/mox/GenericValue.h"
#include "platform/mox/HashMap.h"

namespace Mox {
namespace {

// Of a size that nothing else in this program has.
constexpr std::size_t blockBytes = SmallMemory::mostBytes;

class SmallMemoryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SmallMemory::clear();
    if (!SmallMemory::isKept(blockBytes)) GTEST_SKIP() << "a build that keeps no memory";
  }
};

TEST_F(SmallMemoryTest, ABlockThatGoesIsTheNextOneToComeTheLatestFirst) {
  void* const first = SmallMemory::taken(blockBytes);
  void* const second = SmallMemory::taken(blockBytes);
  SmallMemory::givenBack(first, blockBytes);
  SmallMemory::givenBack(second, blockBytes);
  EXPECT_EQ(SmallMemory::taken(blockBytes), second);
  EXPECT_EQ(SmallMemory::taken(blockBytes), first);
  SmallMemory::givenBack(second, blockBytes);
  SmallMemory::givenBack(first, blockBytes);
}

TEST_F(SmallMemoryTest, SizesThatTheHeapTellsApartAreKeptApart) {
  void* const large = SmallMemory::taken(blockBytes);
  SmallMemory::givenBack(large, blockBytes);
  void* const smaller = SmallMemory::taken(blockBytes - 16);
  EXPECT_NE(smaller, large);
  void* const asLarge = SmallMemory::taken(blockBytes - 15);
  EXPECT_EQ(asLarge, large);
  SmallMemory::givenBack(asLarge, blockBytes - 15);
  SmallMemory::givenBack(smaller, blockBytes - 16);
}

TEST_F(SmallMemoryTest, KeepsNoLargeBlock) {
  EXPECT_FALSE(SmallMemory::isKept(SmallMemory::mostBytes + 1));
  void* const large = SmallMemory::taken(SmallMemory::mostBytes + 1);
  SmallMemory::givenBack(large, SmallMemory::mostBytes + 1);
}

TEST_F(SmallMemoryTest, KeepsSoManyAndNoMore) {
  std::vector<void*> blocks(SmallMemory::mostKept + 1);
  for (void*& block : blocks) block = SmallMemory::taken(blockBytes);
  for (void* const block : blocks) SmallMemory::givenBack(block, blockBytes);
  // The last one has gone to the heap; the one before it is the latest that was kept.
  EXPECT_EQ(SmallMemory::taken(blockBytes), blocks[SmallMemory::mostKept - 1]);
  SmallMemory::givenBack(blocks[SmallMemory::mostKept - 1], blockBytes);
}

TEST_F(SmallMemoryTest, KeepsNothingWhileThreadsMayShare) {
  void* const kept = SmallMemory::taken(blockBytes);
  SmallMemory::givenBack(kept, blockBytes);
  PtrInterface::threadSafePtrIs(true);
  void* const taken = SmallMemory::taken(blockBytes);
  EXPECT_NE(taken, kept);
  SmallMemory::givenBack(taken, blockBytes);
  PtrInterface::threadSafePtrIs(false);
  EXPECT_EQ(SmallMemory::taken(blockBytes), kept);
  SmallMemory::givenBack(kept, blockBytes);
}

TEST_F(SmallMemoryTest, GivesBackToTheHeapWhatItKeepsSoThatThereIsRoomForMore) {
  void* const later = SmallMemory::taken(blockBytes);
  std::vector<void*> blocks(SmallMemory::mostKept);
  for (void*& block : blocks) block = SmallMemory::taken(blockBytes);
  for (void* const block : blocks) SmallMemory::givenBack(block, blockBytes);
  SmallMemory::clear();
  SmallMemory::givenBack(later, blockBytes);
  EXPECT_EQ(SmallMemory::taken(blockBytes), later);
  SmallMemory::givenBack(later, blockBytes);
}

TEST_F(SmallMemoryTest, ServesAdaptersOfValues) {
  auto generic = genericOf(String8("first"));
  void const* const first = generic.get();
  generic.reset();
  generic = genericOf(String8("second"));
  EXPECT_EQ(generic.get(), first);
  auto const copy = generic->clone();
  EXPECT_NE(copy.get(), first);
  EXPECT_EQ(*genericVal<String8>(copy.get()), "second");
}

TEST_F(SmallMemoryTest, ServesEntriesOfMaps) {
  class Entry : public HashMapEntry {
   public:
    explicit Entry(String8 key) : HashMapEntry(std::move(key)) {}
  };
  void const* const first = Ptr<Entry>(new Entry("et1")).ptr();
  EXPECT_EQ(Ptr<Entry>(new Entry("et2")).ptr(), first);
}

}  // namespace
}  // namespace Mox
