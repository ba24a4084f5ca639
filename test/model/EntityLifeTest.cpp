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

template <class E>
class EntityLife : public testing::Test {};
TYPED_TEST_SUITE(EntityLife, BothEntities, EntityNames);

TYPED_TEST(EntityLife, IsMadeEmptyByItsTypeObjectOutsideOfAnyDirectory) {
  Mox::Ptr<Mox::Dir> const dir(new Mox::Dir("dir"));
  Mox::Ptr<TypeParam> const entity = TypeParam::_Type::newEntity("slice", dir.ptr());
  EXPECT_EQ(entity->name(), Mox::Name("slice"));
  EXPECT_EQ(entity->parent(), nullptr);
  EXPECT_EQ(dir->entities(), 0U);
  EXPECT_EQ(entity->references(), 1U);
  EXPECT_EQ(entity->fwkType(), TypeParam::_fwkType());
  EXPECT_EQ(entity->fwkType()->fullName(),
            "Hardware::Kest::Slice::KestSliceDma" + EntityNames::GetName<TypeParam>(0));
  EXPECT_EQ(entity->changeCount(), 0U);
  EXPECT_EQ(entity->lookupCount(), 0U);
  EXPECT_EQ(entity->observers().count(), 0U);
  forEachCollectionOf<TypeParam>([&](auto c) { EXPECT_FALSE(c.iterator(*entity)) << c.handler; });
}

TYPED_TEST(EntityLife, NumbersItsCollectionsInOrder) {
  Mox::Ptr<TypeParam> const entity(new TypeParam("slice"));
  std::vector<std::string> collections;
  entity->forEachCollection([&](auto& c) {
    collections.push_back(std::to_string(c.attributeId - switchPortId<TypeParam>) + " " + c.name +
                          "[" + c.keyName + "]");
    EXPECT_EQ(entity->attributeString(c.attributeId), c.name);
  });
  EXPECT_THAT(collections, ElementsAre("0 switchPort[ifName]", "1 nativeVlan[ifName]",
                                       "2 switchportMode[ifName]", "3 device[devName]",
                                       "4 deviceState[devName]"));
}

TEST(SliceId, IsToldOncePerObserverWhenItIsNewAndIsSilentOtherwise) {
  Events events;
  Mox::Ptr<KestSliceDmaConfig> const config(new KestSliceDmaConfig("slice"));
  auto const a = observe(config, "a", events);
  auto const b = observe(config, "b", events);
  Mox::String8 seen;
  a->reaction = [&] { seen = config->sliceId(); };
  b->reaction = [] { throw std::runtime_error("refused"); };
  config->sliceIdIs("");
  config->sliceIdIs("3");
  config->sliceIdIs("3");
  EXPECT_EQ(seen, "3");
  EXPECT_EQ(config->sliceId(), "3");
  EXPECT_EQ(config->changeCount(), 1U);
  EXPECT_EQ(config->lookupCount(), 0U);
  EXPECT_THAT(events, ElementsAre("a onSliceId", "b onSliceId", "b onNotificationException 258"));
}

}  // namespace
}  // namespace Hardware::Kest::Slice
