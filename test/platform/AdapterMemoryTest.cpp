#include "platform/mox/AdapterMemory.h"

#include <gtest/gtest.h>

#include "platform/mox/GenericValue.h"

namespace Mox {
namespace {

constexpr std::size_t small = AdapterMemory::blockBytes;

TEST(AdapterMemoryTest, KeepsOneSmallBlockForTheNextOne) {
  if (!AdapterMemory::isKept(small)) GTEST_SKIP() << "a build that keeps none";
  void* const first = AdapterMemory::taken(small);
  void* const second = AdapterMemory::taken(1);
  AdapterMemory::givenBack(second, 1);
  AdapterMemory::givenBack(first, small);
  EXPECT_EQ(AdapterMemory::taken(small), second);
  void* const third = AdapterMemory::taken(small);
  EXPECT_NE(third, second);
  AdapterMemory::givenBack(third, small);
  AdapterMemory::givenBack(second, 1);
}

TEST(AdapterMemoryTest, KeepsNoBigBlock) {
  EXPECT_FALSE(AdapterMemory::isKept(small + 1));
  void* const spare = AdapterMemory::taken(small);
  AdapterMemory::givenBack(spare, small);
  void* const big = AdapterMemory::taken(small + 1);
  EXPECT_NE(big, spare);
  AdapterMemory::givenBack(big, small + 1);
}

TEST(AdapterMemoryTest, KeepsNothingWhileThreadsMayShare) {
  PtrInterface::threadSafePtrIs(true);
  EXPECT_FALSE(AdapterMemory::isKept(1));
  PtrInterface::threadSafePtrIs(false);
}

TEST(AdapterMemoryTest, ServesAdaptersOfValues) {
  if (!AdapterMemory::isKept(small)) GTEST_SKIP() << "a build that keeps none";
  auto generic = genericOf(String8("first"));
  void const* const first = generic.get();
  generic.reset();
  generic = genericOf(std::uint32_t{2});
  EXPECT_EQ(generic.get(), first);
  auto const copy = generic->clone();
  EXPECT_NE(copy.get(), first);
  EXPECT_EQ(*genericVal<std::uint32_t>(copy.get()), 2U);
}

}  // namespace
}  // namespace Mox
