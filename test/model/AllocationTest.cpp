#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "test/model/TypedSuites.h"
#include "test/support/Allocation.h"

/// What a change of an entity allocates. The program's allocation functions, which the libraries
/// use too, are replaced by ones that count.
namespace {

std::size_t allocations = 0;

}  // namespace

void* Test::allocated(std::size_t bytes) noexcept {
  ++allocations;
  return std::malloc(bytes);
}

void Test::freed(void* memory) noexcept {
  std::free(memory);
}

namespace Hardware::Kest::Slice {
namespace {

template <class Work>
std::size_t allocationsOf(Work const& work) {
  std::size_t const before = allocations;
  work();
  return allocations - before;
}

/// The texts are longer than any string that could do without memory of its own.
template <class C>
class Allocations : public testing::Test {
 protected:
  using Entity = typename C::Entity;
  using Value = typename C::Value;

  Mox::String8 const key{"Ethernet3/1/1, the port that is there"};
  Mox::String8 const absent{"Ethernet4/1/1, the port that is not"};
  Value const value = C::value(key, 1);
  Value const other = C::value(key, 2);
  Mox::Ptr<Entity> const entity{new Entity("slice")};
  Mox::Ptr<typename C::Entry> const entry = C::newEntry(*entity, key, value);
};

TYPED_TEST_SUITE(Allocations, AllCollections, CollectionNames);

TYPED_TEST(Allocations, AreMadeForANewEntry) {
  EXPECT_GT(allocationsOf([] { Mox::String8("made inside a library"); }), 0U);
  auto const added = TypeParam::value(this->absent, 1);
  EXPECT_GT(allocationsOf([&] { TypeParam::is(*this->entity, this->absent, added); }), 0U);
}

TYPED_TEST(Allocations, AreNotMadeByAChangeThatChangesNothing) {
  Mox::Ptr<typename TypeParam::Entity> const empty(new typename TypeParam::Entity("empty"));
  EXPECT_EQ(allocationsOf([&] {
              TypeParam::is(*this->entity, this->key, this->value);
              TypeParam::del(*this->entity, this->absent);
              TypeParam::del(*this->entity, typename TypeParam::Iterator());
              TypeParam::delAll(*empty);
            }),
            0U);
  EXPECT_EQ(this->entity->changeCount(), 0U);
}

TYPED_TEST(Allocations, AreNotMadeByALookupOrAnUpdateInPlaceThatIsTold) {
  class Silent : public TypeParam::Entity::NotifieeConst {};
  std::vector<Mox::Ptr<Silent>> observers;
  for (int i = 0; i < 8; ++i) {
    observers.emplace_back(new Silent);
    observers.back()->notifierIs(this->entity);
    observers.back()->isRegisteredNotifieeIs(true);
  }
  EXPECT_EQ(allocationsOf([&] {
              TypeParam::lookup(*this->entity, this->absent);
              TypeParam::is(*this->entity, this->key, this->other);
            }),
            0U);
  EXPECT_EQ(this->entity->changeCount(), 1U);
  EXPECT_EQ(this->entry->value(), this->other);
}

TEST(SliceIdAllocations, AreNotMadeByAnyValueThatIsHeld) {
  Mox::Ptr<KestSliceDmaConfig> const config(new KestSliceDmaConfig("slice"));
  Mox::String8 const value("Linecard3/1, of two");
  Mox::String8 const same("Linecard3/1, of two");
  EXPECT_EQ(allocationsOf([&] {
              config->sliceIdIs(value);
              config->sliceIdIs(same);
            }),
            0U);
  EXPECT_EQ(config->changeCount(), 1U);
}

}  // namespace
}  // namespace Hardware::Kest::Slice
