#include <gtest/gtest.h>

#include "platform/mox/Dir.h"
#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

class SliceFileError : public testing::TestWithParam<ErrorRow> {};

TEST_P(SliceFileError, SaysWhereWhatWasFoundAndWhatWasExpected) {
  EXPECT_EQ(refusal(GetParam().text), reportOf(GetParam(), "slice"));
  EXPECT_EQ(Mox::root()->entities(), 0U) << "a refused file left something in the entity tree";
}

#define DEVICE "device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** "
#define PORT "switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** "

ErrorRow const fileErrors[] = {
    {"UnknownStatement", "bogus 'x'", "1:1",
     "expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, "
     "deviceState, end, found 'bogus'"},
    {"StatementInWrongCase", "SliceId 'x'", "1:1",
     "expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, "
     "deviceState, end, found 'SliceId'; did you mean 'sliceId'?"},
    {"NoStatement", "'et1'\t10", "1:1",
     "expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, "
     "deviceState, end, found ''et1''"},
    {"SliceIdWithoutValue", "sliceId", "1:8",
     "expected a string in apostrophes, found the end of the text"},
    {"SliceIdUnclosed", "sliceId 'Linecard1", "1:19",
     "expected the string's closing apostrophe, found the end of the text"},
    {"SliceIdBadEscape", R"(sliceId 'a\qb')", "1:12",
     R"(expected one of \ ' n t r x after a backslash, found 'q')"},
    {"SliceIdTwoValues", "sliceId 'a' 'b'", "1:13", "expected the end of the line, found ''b''"},
    {"SliceIdTwice", R"(sliceId 'a'
sliceId 'a')",
     "2:1", "sliceId was given in line 1 already"},
    {"HandleWithoutPath", "pciHam", "1:7",
     "expected a string in apostrophes, found the end of the text"},
    {"HandleWithoutSlash", "pciHam 'pci'", "1:8",
     "expected a path such as '/pci/0000:05:00.0', found 'pci'"},
    {"HandleAtRoot", "pciHam '/'", "1:8", "expected a path such as '/pci/0000:05:00.0', found '/'"},
    {"HandleEmpty", "pciHam ''", "1:8", "expected a path such as '/pci/0000:05:00.0', found ''"},
    {"HandleEmptyStep", "pciHam '/pci//x'", "1:8",
     "expected a path such as '/pci/0000:05:00.0', found '/pci//x'"},
    {"HandleIsDirectoryPath", "pciHam '/pci/'", "1:8",
     "expected a path such as '/pci/0000:05:00.0', found '/pci/'"},
    {"EndFollowedByAStatement", R"(sliceId 'a'
end

nativeVlan 'et1' 1)",
     "4:1", "expected nothing after 'end', found 'nativeVlan'"},
    {"EndTwice", R"(end
end)",
     "2:1", "expected nothing after 'end', found 'end'"},
    {"EndWithValue", "end 'a'", "1:5", "expected the end of the line, found ''a''"},
    {"HandleBelowHandle", R"(pciHam '/a'
pciHam '/a/b')",
     "2:8", "expected a directory at '/a', found something else"},
    {"HandleAboveHandle", R"(pciHam '/a/b'
pciHam '/a')",
     "2:8", "expected a PCI handle at '/a', found something else"},
    {"HandleTwice", R"(pciHam '/a/b'

pciHam '/a/b')",
     "3:8", "pciHam '/a/b' was given in line 1 already"},
    {"HandleTrailingWord", R"(pciHam '/a/b' # one
pciHam '/a/c' x # two)",
     "2:15", "expected the end of the line, found 'x'"},
    {"VlanIsComment", "nativeVlan 'et1' # 10", "1:18", "expected a decimal number, found '#'"},
    {"VlanHexadecimal", "nativeVlan 'et1' 0x10", "1:19",
     "expected the end of the line, found 'x10'"},
    {"VlanAboveRange", "nativeVlan 'et1' 4095", "1:18",
     "expected a VLAN id from 1 to 4094, or 0 for none, found 4095"},
    {"VlanAboveType", "nativeVlan 'et1' 65536", "1:18",
     "expected a number from 0 to 65535, found a larger one"},
    {"VlanTwoValues", "nativeVlan 'et1' 10 20", "1:21", "expected the end of the line, found '20'"},
    {"VlanTwice", R"(nativeVlan 'et1' 10
nativeVlan 'et2' 10
nativeVlan 'et1' 20)",
     "3:12", "nativeVlan 'et1' was given in line 1 already"},
    {"VlanNameIsNoPort", "nativeVlan 'Management1' 10", "1:12",
     "expected an interface name with 'et' in it, found 'Management1'"},
    {"VlanNameWithNul", R"(nativeVlan 'et\x001' 10)", "1:12",
     R"(expected an interface name without NUL, found 'et\x001')"},
    {"ModeUnknown", "switchportMode 'et1' 'trunk'", "1:22",
     "expected 'switchportModeAccess', 'switchportModeTrunk' or 'switchportModeDot1qTunnel', found "
     "'trunk'"},
    {"ModeNameIsNoPort", "switchportMode '' 'switchportModeTrunk'", "1:16",
     "expected an interface name with 'et' in it, found ''"},
    {"ModeTwice", R"(switchportMode 'et1' 'switchportModeTrunk'
switchportMode 'et1' 'switchportModeTrunk')",
     "2:16", "switchportMode 'et1' was given in line 1 already"},
    {"StateUnknownToMachine", "deviceState 'fap0' 'deviceStateUnknown'", "1:20",
     "expected 'deviceStateUp' or 'deviceStateDown', found 'deviceStateUnknown'"},
    {"StateIsNoState", "deviceState 'fap0' 'up'", "1:20",
     "expected 'deviceStateUp' or 'deviceStateDown', found 'up'"},
    {"StateOfNamelessDevice", "deviceState '' 'deviceStateUp'", "1:13",
     "expected a device name, found an empty one"},
    {"StateMissing", "deviceState 'fap0'", "1:19",
     "expected a string in apostrophes, found the end of the text"},
    {"StateTwice", R"(deviceState 'fap0' 'deviceStateUp'
deviceState 'fap0' 'deviceStateDown')",
     "2:13", "deviceState 'fap0' was given in line 1 already"},
    {"DeviceIsName", "device 'fap0'", "1:8", "expected Value, found '''"},
    {"DeviceOfOtherType",
     "device Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'et1'})",
     "1:58", "expected 'Hardware::Kest::Slice::KestSliceDmaConfig::Device', found 'S'"},
    {"DeviceUnclosed", DEVICE "{'devName': 'fap0'", "1:88", "premature end of value type Device"},
    {"DeviceTrailingWord", DEVICE "{'devName': 'fap0'}) up", "1:91",
     "expected the end of the line, found 'up'"},
    {"DeviceWithoutName", DEVICE "{'numFaps': 2})", "1:8",
     "expected a device name, found an empty one"},
    {"DeviceWithoutState", DEVICE "{'devName': 'fap0'})  # no state", "1:1",
     "expected a deviceState for this device, found none"},
    {"DevicesWithoutState", R"(deviceState 'fap1' 'deviceStateUp'
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap1'})
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap7'})
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap3'})
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0'})
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap5'}))",
     "3:1", "expected a deviceState for this device, found none"},
    {"DeviceTwice", R"(deviceState 'fap0' 'deviceStateUp'
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0'})
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', 'numFaps': 2}))",
     "3:8", "device 'fap0' was given in line 2 already"},
    {"DeviceTooManyFaps", DEVICE "{'numFaps': 4, 'devName': 'fap0'})", "1:104",
     "Device::numFaps < 1 or > 3 not allowed"},
    {"DeviceFapsAboveType", DEVICE "{'numFaps': 4294967296})", "1:82",
     "numFaps: expected a number from 0 to 4294967295, found a larger one"},
    {"DeviceHandleUndeclared", DEVICE "{'pciHam': EntityPtr('/pci/9', 'Fru::PciHam')})", "1:91",
     "pciHam: there is no entity at '/pci/9'"},
    {"DeviceHandleDeclaredBelow",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': EntityPtr('/pci/9', 'Fru::PciHam')})
pciHam '/pci/9')",
     "1:91", "pciHam: there is no entity at '/pci/9'"},
    {"DeviceHandleOfOtherType", R"(pciHam '/pci/9'
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': EntityPtr('/pci/9', 'Mox::Dir')}))",
     "2:101", "pciHam: expected a reference to a 'Fru::PciHam', found one to a 'Mox::Dir'"},
    {"DeviceHandleIsDirectory", R"(pciHam '/pci/9'
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': EntityPtr('/pci', 'Fru::PciHam')}))",
     "2:91", "pciHam: expected a 'Fru::PciHam' at '/pci', found a 'Mox::Dir'"},
    {"PortIsName", "switchPort 'et1'", "1:12", "expected Value, found '''"},
    {"PortWithoutName", PORT "{'destId': 1})", "1:12",
     "expected an interface name with 'et' in it, found ''"},
    {"PortNameIsNoPort", PORT "{'ifName': 'Management1'})", "1:12",
     "expected an interface name with 'et' in it, found 'Management1'"},
    {"PortTwice",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'et1'})
switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'et1'}))",
     "2:12", "switchPort 'et1' was given in line 1 already"},
    {"PortFlagNumber", PORT "{'hwLag': 1})", "1:88", "hwLag: expected True or False, found '1'"},
    {"PortUnknownField", PORT "{'macAddress': ''})", "1:79",
     "SwitchPort has no such attribute: macAddress"},
    {"ControlCharacter", "nativeVlan 'et1' \001", "1:18",
     "expected a decimal number, found character 0x01"},
};

#undef DEVICE
#undef PORT

INSTANTIATE_TEST_SUITE_P(Rows, SliceFileError, testing::ValuesIn(fileErrors),
                         [](auto const& row) { return row.param.name; });

TEST(SliceFileCaret, StandsBelowTheCharacterWhateverIsBeforeIt) {
  struct {
    char const* text;
    char const* report;
  } const table[] = {
      {"\tnativeVlan\t'et1'\tten",
       "slice:1:19: expected a decimal number, found 't'\n  \tnativeVlan\t'et1'\tten\n  \t         "
       " \t     \t^"},
      {"sliceId 'Z\303\274rich \342\200\224' x",
       "slice:1:23: expected the end of the line, found 'x'\n  sliceId 'Z\303\274rich "
       "\342\200\224' x\n                     ^"},
      {"# c\r\nsliceId\r\nnativeVlan",
       R"(slice:2:8: expected a string in apostrophes, found the end of the text
  sliceId
         ^)"},
      {"sliceId\r 'a' b",
       "slice:1:14: expected the end of the line, found 'b'\n  sliceId\r 'a' b\n               ^"},
  };
  for (auto const& row : table) EXPECT_EQ(refusal(row.text), row.report);
}

}  // namespace
}  // namespace Kest::Agent
