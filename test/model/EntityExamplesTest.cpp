#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "test/model/Recorder.h"

/// Both entities as their users write and read them, each case whole.
namespace Hardware::Kest::Slice {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

template <class Entity>
class Observed : public testing::Test {
 protected:
  Events take() { return std::exchange(events, {}); }

  Events events;
  Mox::Ptr<Entity> entity{new Entity("slice")};
  Mox::Ptr<Recorder<Entity>> a = observe(entity, "a", events);
};
template <class Iterator>
std::size_t entries(Iterator it) {
  std::size_t count = 0;
  for (; it; ++it) ++count;
  return count;
}

using Configuration = Observed<KestSliceDmaConfig>;
using Status = Observed<KestSliceDmaStatus>;

TEST_F(Configuration, APortIsWrittenAndRewritten) {
  KestSliceDmaConfig::SwitchPort port;
  port.ifNameIs("et3");
  port.destIdIs(7);
  entity->switchPortIs(port);
  entity->switchPortIs(port);
  EXPECT_EQ(entity->changeCount(), 1U);
  EXPECT_THAT(take(), ElementsAre("a onSwitchPort et3"));
  port.trafficClassIs(2);
  entity->switchPortIs(port);
  EXPECT_EQ(entity->changeCount(), 2U);
  EXPECT_THAT(take(), ElementsAre("a onSwitchPort et3"));
  EXPECT_EQ(entity->switchPort("et3"), port);
}

TEST_F(Configuration, ANativeVlanIsSetChangedAndDeleted) {
  entity->nativeVlanIs("et3", 10);
  entity->nativeVlanIs("et3", 10);
  EXPECT_THAT(take(), ElementsAre("a onNativeVlan et3"));
  entity->nativeVlanIs("et3", 20);
  EXPECT_THAT(take(), ElementsAre("a onNativeVlan et3"));
  EXPECT_EQ(entity->nativeVlan("et3"), 20U);
  EXPECT_EQ(entity->nativeVlanDel("et3"), 20U);
  EXPECT_THAT(take(), ElementsAre("a onNativeVlan et3"));
  EXPECT_EQ(entity->nativeVlanDel("et3"), 0U);
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_EQ(entity->changeCount(), 3U);
}

TEST_F(Configuration, WhatIsNotThereReadsAsTheDefault) {
  EXPECT_EQ(entity->deviceState("fap0"), DeviceState::deviceStateUnknown_);
  EXPECT_EQ(entity->device("fap0"), KestSliceDmaConfig::Device());
  EXPECT_EQ(entity->device("fap0").numFaps(), 1U);
  EXPECT_EQ(entity->switchPort("et3").ifName(), "");
  EXPECT_EQ(entity->switchportMode("et3"), Bridging::SwitchportMode::switchportModeAccess_);
}

TEST_F(Configuration, ADeviceIsStoredAsItIsGiven) {
  KestSliceDmaConfig::Device device;
  device.devNameIs("fap0");
  device.numFapsIs(9);  // only a text with such a number is refused
  entity->deviceIs(device);
  EXPECT_EQ(entity->device("fap0").numFaps(), 9U);
}

TEST_F(Configuration, ADeviceWithAnotherHandleIsAnotherDevice) {
  KestSliceDmaConfig::Device device;
  device.devNameIs("fap0");
  device.pciHamIs(Mox::Ptr<Fru::PciHam const>(new Fru::PciHam("0000:05:00.0")));
  entity->deviceIs(device);
  entity->deviceIs(device);
  EXPECT_EQ(take().size(), 1U);
  device.pciHamIs(Mox::Ptr<Fru::PciHam const>(new Fru::PciHam("0000:05:00.0")));
  entity->deviceIs(device);
  EXPECT_EQ(take().size(), 1U);
  EXPECT_EQ(device.pciHam()->references(), 2U);
  entity->deviceDel("fap0");
  EXPECT_EQ(device.pciHam()->references(), 1U);
}

TEST_F(Configuration, AllDevicesAreDeletedOneByOneForEveryObserver) {
  auto const b = observe(entity, "b", events);
  for (char const* name : {"fap0", "fap1", "fap2"}) {
    KestSliceDmaConfig::Device device;
    device.devNameIs(name);
    entity->deviceIs(device);
  }
  take();
  std::vector<std::size_t> left;
  a->reaction = [&] { left.push_back(entries(entity->deviceIteratorConst())); };
  entity->deviceDelAll();
  EXPECT_THAT(take(),
              UnorderedElementsAre("a onDevice fap0", "a onDevice fap1", "a onDevice fap2",
                                   "b onDevice fap0", "b onDevice fap1", "b onDevice fap2"));
  EXPECT_THAT(left, ElementsAre(2U, 1U, 0U));
  entity->deviceDelAll();
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(Configuration, AnObserverThatThrowsIsToldTheAttribute) {
  auto const b = observe(entity, "b", events);
  a->reaction = [] { throw std::runtime_error("refused"); };
  KestSliceDmaConfig::SwitchPort port;
  port.ifNameIs("et3");
  entity->switchPortIs(port);
  EXPECT_THAT(events, ElementsAre("a onSwitchPort et3", "a onNotificationException 259",
                                  "b onSwitchPort et3"));
}

TEST_F(Configuration, StoresAndCountsWithoutObservers) {
  a->isRegisteredNotifieeIs(false);
  entity->sliceIdIs("3");
  entity->nativeVlanIs("et3", 10);
  entity->nativeVlanIs("et3", 20);
  EXPECT_EQ(entity->nativeVlanDel("et3"), 20U);
  entity->nativeVlanIs("et4", 10);
  entity->nativeVlanDelAll();
  EXPECT_EQ(entity->changeCount(), 6U);
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(Status, APortsCreationIsRecordedAndFlipped) {
  KestSliceDmaStatus::SwitchPort port;
  port.ifNameIs("et3");
  port.createdIs(true);
  entity->switchPortIs(port);
  entity->switchPortIs(port);
  EXPECT_THAT(take(), ElementsAre("a onSwitchPort et3"));
  port.createdIs(false);
  entity->switchPortIs(port);
  EXPECT_THAT(take(), ElementsAre("a onSwitchPort et3"));
  EXPECT_FALSE(entity->switchPort("et3").created());
  EXPECT_EQ(entity->switchPort("et3").ifName(), "et3");
}

TEST_F(Status, AnObserverThatThrowsIsToldTheStatusAttribute) {
  KestSliceDmaStatus::Device device;
  device.devNameIs("fap0");
  a->reaction = [] { throw std::runtime_error("refused"); };
  entity->deviceIs(device);
  EXPECT_THAT(events, ElementsAre("a onDevice fap0", "a onNotificationException 261"));
}

TEST_F(Status, AllDevicesAreDeletedOneByOne) {
  entity->deviceDelAll();
  EXPECT_THAT(take(), IsEmpty());
  for (char const* name : {"fap0", "fap1"}) {
    KestSliceDmaStatus::Device device;
    device.devNameIs(name);
    entity->deviceIs(device);
  }
  take();
  entity->deviceDelAll();
  EXPECT_THAT(events, UnorderedElementsAre("a onDevice fap0", "a onDevice fap1"));
}

TEST_F(Status, ADeviceThatWasNeverRegisteredReadsAsTheDefault) {
  KestSliceDmaStatus::Device const none = entity->device("fap0");
  EXPECT_EQ(none.devName(), "");
  EXPECT_FALSE(none.registered());
}

TEST_F(Status, ACollectionWithoutItsLastEntryIsStillThere) {
  entity->deviceStateIs("fap0", DeviceState::deviceStateUp_);
  EXPECT_EQ(entity->deviceStateDel("fap0"), DeviceState::deviceStateUp_);
  EXPECT_EQ(entity->deviceState("fap0"), DeviceState::deviceStateUnknown_);
  entity->deviceStateIs("fap0", DeviceState::deviceStateDown_);
  EXPECT_EQ(entity->deviceState("fap0"), DeviceState::deviceStateDown_);
}

}  // namespace
}  // namespace Hardware::Kest::Slice
