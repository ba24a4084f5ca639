#include "registry/DeferredNotification.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "test/model/Recorder.h"
#include "test/model/TypedSuites.h"

namespace Hardware::Kest::Slice {
namespace {

using Mox::Ptr;
using testing::ElementsAre;
using testing::IsEmpty;

template <class Entity>
using Deferred = std::conditional_t<std::is_same_v<Entity, KestSliceDmaConfig>,
                                    DeferredConfigNotification, DeferredStatusNotification>;

/// An observer "o" that is told later.
template <class Entity>
class DeferredNotificationTest : public testing::Test {
 protected:
  static std::string id(unsigned collection) {
    return std::to_string(switchPortId<Entity> + collection);
  }
  /// What happened since the last time.
  Events told() { return std::exchange(events, {}); }
  Events delivered() {
    told();
    deferred->deliver();
    return told();
  }

  Events events;
  Ptr<Entity> entity{new Entity("entity")};
  Ptr<Recorder<Entity>> observer{new Recorder<Entity>("o", events)};
  Ptr<Deferred<Entity>> deferred{new Deferred<Entity>(entity, observer)};
};

using Entities = testing::Types<KestSliceDmaConfig, KestSliceDmaStatus>;
TYPED_TEST_SUITE(DeferredNotificationTest, Entities, EntityNames);

TYPED_TEST(DeferredNotificationTest, OnePendingKeyGoesToTheKeyedHandler) {
  forEachCollectionOf<TypeParam>([&](auto collection) {
    using C = decltype(collection);
    std::string const handler = C::handler;
    EXPECT_FALSE(this->deferred->isPending());
    C::is(*this->entity, "et1", C::value("et1", 1));
    EXPECT_TRUE(this->deferred->isPending());
    EXPECT_THAT(this->told(), ElementsAre("o " + handler + "moxImmediate"));
    EXPECT_THAT(this->delivered(), ElementsAre("o " + handler + " et1"));
    EXPECT_FALSE(this->deferred->isPending());
    EXPECT_THAT(this->delivered(), IsEmpty());
  });
}

TYPED_TEST(DeferredNotificationTest, TwoOrMorePendingKeysAreToldAsTheWholeCollection) {
  forEachCollectionOf<TypeParam>([&](auto collection) {
    using C = decltype(collection);
    std::string const handler = C::handler;
    for (std::size_t count = 2; count < 5; ++count) {
      this->told();
      for (std::size_t n = 0; n < count; ++n) {
        C::notify(*this->entity, Mox::String8(std::to_string(n)));
      }
      EXPECT_EQ(this->told(), Events(count, "o " + handler + "moxImmediate"));
      EXPECT_THAT(this->delivered(), ElementsAre("o " + handler + "()"));
    }
  });
}

TYPED_TEST(DeferredNotificationTest, TheSameKeyCountsOnceAndIsToldAtOnceEachTime) {
  forEachCollectionOf<TypeParam>([&](auto collection) {
    using C = decltype(collection);
    std::string const handler = C::handler;
    C::is(*this->entity, "et1", C::value("et1", 1));
    C::notify(*this->entity, "et1");
    C::del(*this->entity, "et1");
    EXPECT_EQ(this->told(), Events(3, "o " + handler + "moxImmediate"));
    EXPECT_THAT(this->delivered(), ElementsAre("o " + handler + " et1"));
  });
}

TYPED_TEST(DeferredNotificationTest, DeliversByAttributeNumber) {
  this->entity->deviceStateNotify("fap1");
  this->entity->deviceStateNotify("fap0");
  this->entity->deviceNotify("fap0");
  this->entity->switchportModeNotify("et1");
  this->entity->switchPortNotify("et2");
  this->entity->switchPortNotify("et1");
  this->entity->nativeVlanNotify("et1");
  EXPECT_THAT(this->delivered(),
              ElementsAre("o onSwitchPort()", "o onNativeVlan et1", "o onSwitchportMode et1",
                          "o onDevice fap0", "o onDeviceState()"));
}

TYPED_TEST(DeferredNotificationTest, WhatChangesDuringDeliveryWaitsForTheNext) {
  this->entity->switchPortNotify("et1");
  this->told();
  this->observer->reaction = [&] {
    this->observer->reaction = nullptr;
    this->entity->switchPortNotify("et1");
    this->entity->deviceNotify("fap0");
  };
  this->deferred->deliver();
  EXPECT_THAT(this->told(), ElementsAre("o onSwitchPort et1", "o onSwitchPortmoxImmediate",
                                        "o onDevicemoxImmediate"));
  EXPECT_TRUE(this->deferred->isPending());
  EXPECT_THAT(this->delivered(), ElementsAre("o onSwitchPort et1", "o onDevice fap0"));
}

TYPED_TEST(DeferredNotificationTest, AHandlersExceptionIsReportedToTheObserverAndTheRestIsTold) {
  this->entity->switchPortNotify("et1");
  this->entity->deviceNotify("fap0");
  this->entity->deviceNotify("fap1");
  this->entity->deviceStateNotify("fap0");
  this->observer->reaction = [] { throw std::runtime_error("of a handler"); };
  EXPECT_THAT(this->delivered(),
              ElementsAre("o onSwitchPort et1", "o onNotificationException " + this->id(0),
                          "o onDevice()", "o onNotificationException " + this->id(3),
                          "o onDeviceState fap0", "o onNotificationException " + this->id(4)));
}

TYPED_TEST(DeferredNotificationTest, AnExceptionOfTheReportStopsNothingEither) {
  this->entity->switchPortNotify("et1");
  this->entity->deviceNotify("fap0");
  this->observer->reaction = [] { throw std::runtime_error("of a handler"); };
  this->observer->exceptionReaction = [] { throw std::runtime_error("of the report"); };
  EXPECT_THAT(this->delivered(),
              ElementsAre("o onSwitchPort et1", "o onNotificationException " + this->id(0),
                          "o onDevice fap0", "o onNotificationException " + this->id(3)));
  EXPECT_FALSE(this->deferred->isPending());
}

TYPED_TEST(DeferredNotificationTest, AnImmediateHandlersExceptionIsReportedAndTheKeyIsPending) {
  this->observer->reaction = [] { throw std::runtime_error("of the immediate handler"); };
  this->entity->nativeVlanIs("et1", 10);
  EXPECT_THAT(this->told(), ElementsAre("o onNativeVlanmoxImmediate",
                                        "o onNotificationException " + this->id(1)));
  this->observer->reaction = nullptr;
  EXPECT_THAT(this->delivered(), ElementsAre("o onNativeVlan et1"));
}

TYPED_TEST(DeferredNotificationTest, HandlersRunInAnExpectationScope) {
  unsigned depth = 0;
  this->entity->deviceNotify("fap0");
  this->observer->reaction = [&] { depth = Mox::ExpectationScope::depth(); };
  this->deferred->deliver();
  EXPECT_EQ(depth, 1U);
  EXPECT_EQ(Mox::ExpectationScope::depth(), 0U);
}

TYPED_TEST(DeferredNotificationTest, ZeroReferencesAreToldAtOnce) {
  this->entity = nullptr;
  EXPECT_THAT(this->told(), ElementsAre("o onZeroReferences"));
  EXPECT_FALSE(this->deferred->isPending());
}

TYPED_TEST(DeferredNotificationTest, GoesWithWhatIsPending) {
  this->entity->deviceNotify("fap0");
  this->told();
  this->deferred = nullptr;
  EXPECT_EQ(this->observer->references(), 1U);
  this->entity->deviceNotify("fap0");
  EXPECT_EQ(this->entity->observers().count(), 0U);
  EXPECT_THAT(this->told(), IsEmpty());
}

TYPED_TEST(DeferredNotificationTest, MayBeLetGoOfByAHandler) {
  this->entity->switchPortNotify("et1");
  this->entity->deviceNotify("fap0");
  this->told();
  this->observer->reaction = [&] { this->deferred = nullptr; };
  this->deferred->deliver();
  EXPECT_THAT(this->told(), ElementsAre("o onSwitchPort et1", "o onDevice fap0"));
  EXPECT_EQ(this->observer->references(), 1U);
}

TYPED_TEST(DeferredNotificationTest, MayDeliverWithinADelivery) {
  this->entity->switchPortNotify("et1");
  this->entity->deviceNotify("fap0");
  this->told();
  this->observer->reaction = [&] {
    this->observer->reaction = nullptr;
    this->entity->nativeVlanNotify("et1");
    this->deferred->deliver();
  };
  this->deferred->deliver();
  EXPECT_THAT(this->told(), ElementsAre("o onSwitchPort et1", "o onNativeVlanmoxImmediate",
                                        "o onNativeVlan et1", "o onDevice fap0"));
}

TEST(DeferredConfigNotification, TellsOfTheSliceIdFirstAndOnce) {
  Events events;
  Ptr<KestSliceDmaConfig> const config(new KestSliceDmaConfig("config"));
  Ptr<Recorder<KestSliceDmaConfig>> const observer(new Recorder<KestSliceDmaConfig>("o", events));
  Ptr<DeferredConfigNotification> const deferred(new DeferredConfigNotification(config, observer));
  config->switchPortNotify("et1");
  config->sliceIdIs("Linecard3/1");
  config->sliceIdIs("Linecard3/2");
  config->sliceIdIs("Linecard3/2");
  EXPECT_THAT(std::exchange(events, {}), ElementsAre("o onSwitchPortmoxImmediate"));
  observer->reaction = [] { throw std::runtime_error("of a handler"); };
  deferred->deliver();
  EXPECT_THAT(events, ElementsAre("o onSliceId", "o onNotificationException 258",
                                  "o onSwitchPort et1", "o onNotificationException 259"));
}

}  // namespace
}  // namespace Hardware::Kest::Slice
