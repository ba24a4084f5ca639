#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>

#include "test/model/RecordSamples.h"

namespace Hardware::Kest::Slice {
namespace {

static_assert(std::is_same_v<KestSliceDmaConfig::SwitchPort, ConfigSwitchPort>);
static_assert(std::is_same_v<KestSliceDmaConfig::Device, ConfigDevice>);
static_assert(std::is_same_v<KestSliceDmaStatus::SwitchPort, StatusSwitchPort>);
static_assert(std::is_same_v<KestSliceDmaStatus::Device, StatusDevice>);

ConfigSwitchPort fullPort() {
  ConfigSwitchPort port;
  port.ifNameIs("et3");
  port.destIdIs(1);
  port.shadowIntfIdIs(4096);
  port.trafficClassIs(4294967295U);
  port.devNameIs("fap0");
  port.fapNumIs(2);
  port.ctrlIs(true);
  port.hwLagIs(true);
  port.macAddrIs(Pelk::EthAddr("00:1c:73:0a:0b:0c"));
  return port;
}

constexpr char const* fullPortText =
    "Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'et3', "
    "'destId': 1, 'shadowIntfId': 4096, 'trafficClass': 4294967295, 'devName': 'fap0', "
    "'fapNum': 2, 'ctrl': True, 'hwLag': True, 'macAddr': '00:1c:73:0a:0b:0c'})";

ConfigDevice fullDevice() {
  ConfigDevice device;
  device.devNameIs("fap0");
  device.pciHamIs(handles()[1]);
  device.fapTypeIs(FapType::fapTypeAradDual_);
  device.numFapsIs(2);
  device.cpuTmSysPortIs(3);
  device.cpuEthSysPortIs(4);
  device.cpuRawSysPortIs(5);
  device.sflowPortIs(6);
  device.cpuAradSysPortIs(7);
  device.cpuAradIs(8);
  device.cpuAradBridgeIs(9);
  return device;
}

constexpr char const* fullDeviceText =
    "Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', "
    "'pciHam': EntityPtr('/pci/0000:05:00.0', 'Fru::PciHam'), 'fapType': 'fapTypeAradDual', "
    "'numFaps': 2, 'cpuTmSysPort': 3, 'cpuEthSysPort': 4, 'cpuRawSysPort': 5, 'sflowPort': 6, "
    "'cpuAradSysPort': 7, 'cpuArad': 8, 'cpuAradBridge': 9})";

StatusSwitchPort fullStatusPort() {
  StatusSwitchPort port;
  port.ifNameIs("et'3\\");
  port.createdIs(true);
  return port;
}

constexpr char const* fullStatusPortText =
    "Value('Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort', ** {'ifName': 'et\\'3\\\\', "
    "'created': True})";

StatusDevice fullStatusDevice() {
  StatusDevice device;
  device.devNameIs("fap0");
  device.registeredIs(true);
  return device;
}

constexpr char const* fullStatusDeviceText =
    "Value('Hardware::Kest::Slice::KestSliceDmaStatus::Device', ** {'devName': 'fap0', "
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
             "Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': '', "
             "'destId': 0, 'shadowIntfId': 0, 'trafficClass': 0, 'devName': '', 'fapNum': 0, "
             "'ctrl': False, 'hwLag': False, 'macAddr': '00:00:00:00:00:00'})");
  expectText(ConfigDevice(),
             "Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': '', "
             "'pciHam': None, 'fapType': 'fapTypeUnknown', 'numFaps': 1, 'cpuTmSysPort': 0, "
             "'cpuEthSysPort': 0, 'cpuRawSysPort': 0, 'sflowPort': 0, 'cpuAradSysPort': 0, "
             "'cpuArad': 0, 'cpuAradBridge': 0})");
  expectText(StatusSwitchPort(),
             "Value('Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort', ** {'ifName': '', "
             "'created': False})");
  expectText(StatusDevice(),
             "Value('Hardware::Kest::Slice::KestSliceDmaStatus::Device', ** {'devName': '', "
             "'registered': False})");
}

/// One field changed from `full`: the record differs from it, and is equal to a copy of itself.
template <class Record, class... Change>
void expectEachToDiffer(Record const& full, Change... changes) {
  auto const expectDifferent = [&full](auto change) {
    Record changed = full;
    EXPECT_TRUE(changed == full);
    change(changed);
    Record const copy = changed;
    EXPECT_FALSE(changed == full) << changed;
    EXPECT_TRUE(changed != full) << changed;
    EXPECT_TRUE(changed == copy) << changed;
    EXPECT_FALSE(changed != copy) << changed;
  };
  (expectDifferent(changes), ...);
}

TEST(RecordEquality, ComparesEveryFieldOfAConfiguredPort) {
  expectEachToDiffer(
      fullPort(), [](auto& p) { p.ifNameIs("et4"); }, [](auto& p) { p.destIdIs(9); },
      [](auto& p) { p.shadowIntfIdIs(9); }, [](auto& p) { p.trafficClassIs(9); },
      [](auto& p) { p.devNameIs("fap1"); }, [](auto& p) { p.fapNumIs(9); },
      [](auto& p) { p.ctrlIs(false); }, [](auto& p) { p.hwLagIs(false); },
      [](auto& p) { p.macAddrIs(Pelk::EthAddr("00:1c:73:0a:0b:0d")); });
}

TEST(RecordEquality, ComparesEveryFieldOfAConfiguredDevice) {
  expectEachToDiffer(
      fullDevice(), [](auto& d) { d.devNameIs("fap1"); }, [](auto& d) { d.pciHamIs(nullptr); },
      [](auto& d) { d.fapTypeIs(FapType::fapTypeArad_); }, [](auto& d) { d.numFapsIs(3); },
      [](auto& d) { d.cpuTmSysPortIs(99); }, [](auto& d) { d.cpuEthSysPortIs(99); },
      [](auto& d) { d.cpuRawSysPortIs(99); }, [](auto& d) { d.sflowPortIs(99); },
      [](auto& d) { d.cpuAradSysPortIs(99); }, [](auto& d) { d.cpuAradIs(99); },
      [](auto& d) { d.cpuAradBridgeIs(99); });
}

TEST(RecordEquality, ComparesEveryFieldOfAReport) {
  expectEachToDiffer(
      fullStatusPort(), [](auto& p) { p.ifNameIs("et4"); }, [](auto& p) { p.createdIs(false); });
  expectEachToDiffer(
      fullStatusDevice(), [](auto& d) { d.devNameIs("fap1"); },
      [](auto& d) { d.registeredIs(false); });
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
