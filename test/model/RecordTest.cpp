#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>

#include "test/model/RecordSamples.h"

namespace Hardware::Kest::Slice {
namespace {

ConfigSwitchPort fullPort() {
  return ConfigSwitchPort({.ifName = "et3",
                           .destId = 1,
                           .shadowIntfId = 4096,
                           .trafficClass = 4294967295U,
                           .devName = "fap0",
                           .fapNum = 2,
                           .ctrl = true,
                           .hwLag = true,
                           .macAddr = Pelk::EthAddr("00:1c:73:0a:0b:0c")});
}

constexpr char const* fullPortText =
    "Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** "
    "{'ifName': 'et3', "
    "'destId': 1, 'shadowIntfId': 4096, 'trafficClass': 4294967295, 'devName': "
    "'fap0', "
    "'fapNum': 2, 'ctrl': True, 'hwLag': True, 'macAddr': "
    "'00:1c:73:0a:0b:0c'})";

ConfigDevice fullDevice() {
  return ConfigDevice({.devName = "fap0",
                       .pciHam = handles()[1],
                       .fapType = FapType::fapTypeAradDual_,
                       .numFaps = 2,
                       .cpuTmSysPort = 3,
                       .cpuEthSysPort = 4,
                       .cpuRawSysPort = 5,
                       .sflowPort = 6,
                       .cpuAradSysPort = 7,
                       .cpuArad = 8,
                       .cpuAradBridge = 9});
}

constexpr char const* fullDeviceText =
    "Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': "
    "'fap0', "
    "'pciHam': EntityPtr('/pci/0000:05:00.0', 'Fru::PciHam'), 'fapType': "
    "'fapTypeAradDual', "
    "'numFaps': 2, 'cpuTmSysPort': 3, 'cpuEthSysPort': 4, 'cpuRawSysPort': 5, "
    "'sflowPort': 6, "
    "'cpuAradSysPort': 7, 'cpuArad': 8, 'cpuAradBridge': 9})";

StatusSwitchPort fullStatusPort() {
  return StatusSwitchPort({.ifName = "et'3\\", .created = true});
}

constexpr char const* fullStatusPortText =
    "Value('Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort', ** "
    "{'ifName': 'et\\'3\\\\', "
    "'created': True})";

StatusDevice fullStatusDevice() {
  return StatusDevice({.devName = "fap0", .registered = true});
}

constexpr char const* fullStatusDeviceText =
    "Value('Hardware::Kest::Slice::KestSliceDmaStatus::Device', ** {'devName': "
    "'fap0', "
    "'registered': True})";

template <class Record>
void expectText(Record const& record, char const* text) {
  EXPECT_EQ(valueToStrep(record), text);
  std::ostringstream stream;
  stream << record;
  EXPECT_EQ(stream.str(), text);
  EXPECT_EQ(read<Record>(text), record);
}

TEST(RecordText, NamesEveryFieldInOrderOfDeclaration) {
  expectText(fullPort(), fullPortText);
  expectText(fullDevice(), fullDeviceText);
  expectText(fullStatusPort(), fullStatusPortText);
  expectText(fullStatusDevice(), fullStatusDeviceText);
}

TEST(RecordText, ShowsTheDefaultOfEveryField) {
  expectText(ConfigSwitchPort(),
             "Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', "
             "** {'ifName': '', "
             "'destId': 0, 'shadowIntfId': 0, 'trafficClass': 0, 'devName': "
             "'', 'fapNum': 0, "
             "'ctrl': False, 'hwLag': False, 'macAddr': '00:00:00:00:00:00'})");
  expectText(ConfigDevice(),
             "Value('Hardware::Kest::Slice::KestSliceDmaConfig:"
             ":Device', ** {'devName': '', "
             "'pciHam': None, 'fapType': 'fapTypeUnknown', "
             "'numFaps': 1, 'cpuTmSysPort': 0, "
             "'cpuEthSysPort': 0, 'cpuRawSysPort': 0, "
             "'sflowPort': 0, 'cpuAradSysPort': 0, "
             "'cpuArad': 0, 'cpuAradBridge': 0})");
  expectText(StatusSwitchPort(),
             "Value('Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort', "
             "** {'ifName': '', "
             "'created': False})");
  expectText(StatusDevice(),
             "Value('Hardware::Kest::Slice::KestSliceDmaStatus:"
             ":Device', ** {'devName': '', "
             "'registered': False})");
}

/// Each field of `full` changed by itself to what a default record has there.
template <class Record>
void expectEachFieldToCount(Record const& full) {
  Record const none;
  detail::forEachField<Record>([&](auto const& field) {
    Record changed = full;
    EXPECT_TRUE(changed == full);
    changed.fields().*field.member = none.fields().*field.member;
    EXPECT_FALSE(changed == full) << field.name;
    EXPECT_TRUE(changed != full) << field.name;
  });
}

TEST(RecordEquality, ComparesEveryField) {
  expectEachFieldToCount(fullPort());
  expectEachFieldToCount(fullDevice());
  expectEachFieldToCount(fullStatusPort());
  expectEachFieldToCount(fullStatusDevice());
}

/// Accessors read and write the field of their name.
TEST(RecordAccessors, ReachTheirFields) {
  Random random(7);
  auto const port = randomRecord<ConfigSwitchPort>(random);
  EXPECT_EQ(
      ConfigSwitchPort({port.ifName(), port.destId(), port.shadowIntfId(), port.trafficClass(),
                        port.devName(), port.fapNum(), port.ctrl(), port.hwLag(), port.macAddr()}),
      port);
  auto const device = randomRecord<ConfigDevice>(random);
  EXPECT_EQ(ConfigDevice({device.devName(), device.pciHam(), device.fapType(), device.numFaps(),
                          device.cpuTmSysPort(), device.cpuEthSysPort(), device.cpuRawSysPort(),
                          device.sflowPort(), device.cpuAradSysPort(), device.cpuArad(),
                          device.cpuAradBridge()}),
            device);
  auto const report = randomRecord<StatusSwitchPort>(random);
  EXPECT_EQ(StatusSwitchPort({report.ifName(), report.created()}), report);
  auto const registered = randomRecord<StatusDevice>(random);
  EXPECT_EQ(StatusDevice({registered.devName(), registered.registered()}), registered);
}

TEST(RecordEquality, TwoHandlesOfTheSameDeviceAreDifferent) {
  ConfigDevice one = fullDevice();
  ConfigDevice other = fullDevice();
  one.pciHamIs(Handle(new Fru::PciHam("0000:05:00.0")));
  other.pciHamIs(Handle(new Fru::PciHam("0000:05:00.0")));
  EXPECT_NE(one, other);
}

TEST(RecordEquality, StringsAreComparedByContent) {
  StatusSwitchPort one;
  StatusSwitchPort other;
  one.ifNameIs(Mox::String8(std::string_view("et\0a", 4)));
  other.ifNameIs(Mox::String8(std::string("et\0a", 4)));
  EXPECT_EQ(one, other);
  other.ifNameIs(Mox::String8(std::string("et\0b", 4)));
  EXPECT_NE(one, other);
}

TEST(RecordHandle, EachCopyOfADeviceHoldsOneReference) {
  Handle const handle(new Fru::PciHam("0000:05:00.0"));
  ConfigDevice device;
  device.pciHamIs(handle);
  EXPECT_EQ(handle->references(), 2U);
  {
    ConfigDevice const copy = device;
    EXPECT_EQ(handle->references(), 3U);
  }
  EXPECT_EQ(handle->references(), 2U);
  device = ConfigDevice();
  EXPECT_EQ(handle->references(), 1U);
}

template <class Record>
class AnyRecord : public testing::Test {};
TYPED_TEST_SUITE(AnyRecord, AllRecords);

TYPED_TEST(AnyRecord, ReadsBackFromItsText) {
  Random random(21);
  for (int i = 0; i < 10000; ++i) {
    auto const record = randomRecord<TypeParam>(random);
    Mox::String8 const text = valueToStrep(record);
    ASSERT_EQ(Mox::strepToValue<TypeParam>(text), record) << "record " << i;
  }
}

}  // namespace
}  // namespace Hardware::Kest::Slice
