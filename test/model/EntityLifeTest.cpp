#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/mox/Dir.h"
#include "registry/EntityTypes.h"
#include "test/model/Recorder.h"
#include "test/model/TypedSuites.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class E>
class EntityLife : public testing::Test {};
using BothEntities = testing::Types<KestSliceDmaConfig, KestSliceDmaStatus>;
TYPED_TEST_SUITE(EntityLife, BothEntities, EntityNames);

TYPED_TEST(EntityLife, BeginsEmpty) {
  Mox::Ptr<TypeParam> const entity(new TypeParam("slice"));
  EXPECT_EQ(entity->name(), Mox::Name("slice"));
  EXPECT_EQ(entity->parent(), nullptr);
  EXPECT_EQ(entity->changeCount(), 0U);
  EXPECT_EQ(entity->lookupCount(), 0U);
  EXPECT_EQ(entity->observers().count(), 0U);
  forEachCollectionOf<TypeParam>([&](auto c) { EXPECT_FALSE(c.iterator(*entity)) << c.handler; });
}

TYPED_TEST(EntityLife, IsMadeByItsTypeObject) {
  Mox::Ptr<TypeParam> const entity = TypeParam::_Type::newEntity("slice", nullptr);
  EXPECT_EQ(entity->name(), Mox::Name("slice"));
  EXPECT_EQ(entity->references(), 1U);
  EXPECT_EQ(entity->fwkType(), TypeParam::_fwkType());
  EXPECT_EQ(entity->fwkType()->fullName(),
            "Hardware::Kest::Slice::KestSliceDma" + EntityNames::GetName<TypeParam>(0));
}

TYPED_TEST(EntityLife, IsNotPutIntoTheDirectoryThatItIsMadeFor) {
  Mox::Ptr<Mox::Dir> const dir(new Mox::Dir("dir"));
  Mox::Ptr<TypeParam> const entity = TypeParam::_Type::newEntity("slice", dir.ptr());
  EXPECT_EQ(entity->parent(), nullptr);
  EXPECT_EQ(dir->entities(), 0U);
}

TYPED_TEST(EntityLife, LetsGoOfItsEntriesWhenItEnds) {
  Mox::Ptr<TypeParam> entity(new TypeParam("slice"));
  forEachCollectionOf<TypeParam>([&](auto c) {
    Mox::Ptr<TypeParam> brief(new TypeParam("brief"));
    auto const held = c.newEntry(*brief, "x", c.value("x", 1));
    EXPECT_EQ(held->references(), 2U);
    brief = nullptr;
    EXPECT_EQ(held->references(), 1U);
    EXPECT_EQ(held->value(), c.value("x", 1));
  });
}

TYPED_TEST(EntityLife, NumbersItsCollectionsInOrder) {
  Mox::Ptr<TypeParam> const entity(new TypeParam("slice"));
  std::vector<std::string> collections;
  entity->forEachCollection([&](auto& c) {
    collections.push_back(std::to_string(c.attributeId - switchPortId<TypeParam>) + " " + c.name +
                          "[" + c.keyName + "]");
  });
  EXPECT_THAT(collections, ElementsAre("0 switchPort[ifName]", "1 nativeVlan[ifName]",
                                       "2 switchportMode[ifName]", "3 device[devName]",
                                       "4 deviceState[devName]"));
}

class SliceId : public testing::Test {
 protected:
  Events events;
  Mox::Ptr<KestSliceDmaConfig> config{new KestSliceDmaConfig("slice")};
  Mox::Ptr<Recorder<KestSliceDmaConfig>> a = observe(config, "a", events);
  Mox::Ptr<Recorder<KestSliceDmaConfig>> b = observe(config, "b", events);
};

TEST_F(SliceId, IsEmptyAtFirst) {
  EXPECT_EQ(config->sliceId(), "");
  EXPECT_EQ(config->lookupCount(), 0U);
}

TEST_F(SliceId, ANewValueIsStoredCountedAndToldOncePerObserver) {
  Mox::String8 seen;
  a->reaction = [&] { seen = config->sliceId(); };
  config->sliceIdIs("3");
  EXPECT_EQ(seen, "3");
  EXPECT_EQ(config->sliceId(), "3");
  EXPECT_EQ(config->changeCount(), 1U);
  EXPECT_EQ(config->lookupCount(), 0U);
  EXPECT_THAT(events, ElementsAre("a onSliceId", "b onSliceId"));
}

TEST_F(SliceId, TheCurrentValueIsSilent) {
  config->sliceIdIs("");
  EXPECT_EQ(config->changeCount(), 0U);
  EXPECT_THAT(events, IsEmpty());
  config->sliceIdIs("3");
  events.clear();
  config->sliceIdIs("3");
  EXPECT_EQ(config->changeCount(), 1U);
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(SliceId, AnExceptionIsReportedWithItsNumber) {
  a->reaction = [] { throw std::runtime_error("refused"); };
  config->sliceIdIs("3");
  EXPECT_THAT(events, ElementsAre("a onSliceId", "a onNotificationException 258", "b onSliceId"));
}

}  // namespace
}  // namespace Hardware::Kest::Slice
