#include <gtest/gtest.h>

#include "platform/mox/Dir.h"
#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

class SliceFileError : public testing::TestWithParam<ErrorRow> {};

TEST_P(SliceFileError, SaysWhereWhatWasFoundAndWhatWasExpected) {
  EXPECT_EQ(refusal(GetParam().text), GetParam().message);
  EXPECT_EQ(Mox::root()->entities(), 0U) << "a refused file left something in the entity tree";
}

ErrorRow const fileErrors[] = {
    {"UnknownStatement", R"(bogus 'x')",
     R"(slice:1:1: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, deviceState, end, found 'bogus'
  bogus 'x'
  ^)"},
    {"StatementInWrongCase", R"(SliceId 'x')",
     R"(slice:1:1: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, deviceState, end, found 'SliceId'; did you mean 'sliceId'?
  SliceId 'x'
  ^)"},
    {"NoStatement", R"('et1' 10)",
     R"(slice:1:1: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, deviceState, end, found ''et1''
  'et1' 10
  ^)"},
    {"SliceIdWithoutValue", R"(sliceId)",
     R"(slice:1:8: expected a string in apostrophes, found the end of the text
  sliceId
         ^)"},
    {"SliceIdWithoutApostrophes", R"(sliceId Linecard1)",
     R"(slice:1:9: expected a string in apostrophes, found 'L'
  sliceId Linecard1
          ^)"},
    {"SliceIdUnclosed", R"(sliceId 'Linecard1)",
     R"(slice:1:19: expected the string's closing apostrophe, found the end of the text
  sliceId 'Linecard1
                    ^)"},
    {"SliceIdBadEscape", R"(sliceId 'a\qb')",
     R"(slice:1:12: expected one of \ ' n t r x behind a backslash, found 'q'
  sliceId 'a\qb'
             ^)"},
    {"SliceIdBadHexEscape", R"(sliceId 'a\x4')",
     R"(slice:1:14: expected two hexadecimal digits behind \x, found '''
  sliceId 'a\x4'
               ^)"},
    {"SliceIdTwoValues", R"(sliceId 'a' 'b')",
     R"(slice:1:13: expected the end of the line, found ''b''
  sliceId 'a' 'b'
              ^)"},
    {"SliceIdTwice",
     R"(sliceId 'a'
sliceId 'a')",
     R"(slice:2:1: sliceId was given in line 1 already
  sliceId 'a'
  ^)"},
    {"HandleWithoutPath", R"(pciHam)",
     R"(slice:1:7: expected a string in apostrophes, found the end of the text
  pciHam
        ^)"},
    {"HandleWithoutSlash", R"(pciHam 'pci')",
     R"(slice:1:8: expected a path such as '/pci/0000:05:00.0', found 'pci'
  pciHam 'pci'
         ^)"},
    {"HandleAtRoot", R"(pciHam '/')",
     R"(slice:1:8: expected a path such as '/pci/0000:05:00.0', found '/'
  pciHam '/'
         ^)"},
    {"HandleEmpty", R"(pciHam '')",
     R"(slice:1:8: expected a path such as '/pci/0000:05:00.0', found ''
  pciHam ''
         ^)"},
    {"HandleRelative", R"(pciHam 'pci/x')",
     R"(slice:1:8: expected a path such as '/pci/0000:05:00.0', found 'pci/x'
  pciHam 'pci/x'
         ^)"},
    {"HandleEmptyStep", R"(pciHam '/pci//x')",
     R"(slice:1:8: expected a path such as '/pci/0000:05:00.0', found '/pci//x'
  pciHam '/pci//x'
         ^)"},
    {"HandleIsDirectoryPath", R"(pciHam '/pci/')",
     R"(slice:1:8: expected a path such as '/pci/0000:05:00.0', found '/pci/'
  pciHam '/pci/'
         ^)"},
    {"HandleWithControlCharacter", R"(pciHam 'a\n')",
     R"(slice:1:8: expected a path such as '/pci/0000:05:00.0', found 'a\n'
  pciHam 'a\n'
         ^)"},
    {"EndFollowedByAStatement",
     R"(sliceId 'a'
end

nativeVlan 'et1' 1)",
     R"(slice:4:1: expected nothing after 'end', found 'nativeVlan'
  nativeVlan 'et1' 1
  ^)"},
    {"EndTwice",
     R"(end
end)",
     R"(slice:2:1: expected nothing after 'end', found 'end'
  end
  ^)"},
    {"EndWithValue", R"(end 'a')",
     R"(slice:1:5: expected the end of the line, found ''a''
  end 'a'
      ^)"},
    {"HandleBelowHandle",
     R"(pciHam '/a'
pciHam '/a/b')",
     R"(slice:2:8: expected a directory at '/a', found something else
  pciHam '/a/b'
         ^)"},
    {"HandleAboveHandle",
     R"(pciHam '/a/b'
pciHam '/a')",
     R"(slice:2:8: expected a PCI handle at '/a', found something else
  pciHam '/a'
         ^)"},
    {"HandleTwice",
     R"(pciHam '/a/b'

pciHam '/a/b')",
     R"(slice:3:8: pciHam '/a/b' was given in line 1 already
  pciHam '/a/b'
         ^)"},
    {"HandleTrailingWord",
     R"(pciHam '/a/b' # one
pciHam '/a/c' x # two)",
     R"(slice:2:15: expected the end of the line, found 'x'
  pciHam '/a/c' x # two
                ^)"},
    {"VlanWithoutName", R"(nativeVlan)",
     R"(slice:1:11: expected a string in apostrophes, found the end of the text
  nativeVlan
            ^)"},
    {"VlanNameWithoutApostrophes", R"(nativeVlan et1 10)",
     R"(slice:1:12: expected a string in apostrophes, found 'e'
  nativeVlan et1 10
             ^)"},
    {"VlanWithoutNumber", R"(nativeVlan 'et1')",
     R"(slice:1:17: expected a decimal number, found the end of the text
  nativeVlan 'et1'
                  ^)"},
    {"VlanIsComment", R"(nativeVlan 'et1' # 10)",
     R"(slice:1:18: expected a decimal number, found '#'
  nativeVlan 'et1' # 10
                   ^)"},
    {"VlanIsWord", R"(nativeVlan 'et1' ten)",
     R"(slice:1:18: expected a decimal number, found 't'
  nativeVlan 'et1' ten
                   ^)"},
    {"VlanIsString", R"(nativeVlan 'et1' '10')",
     R"(slice:1:18: expected a decimal number, found '''
  nativeVlan 'et1' '10'
                   ^)"},
    {"VlanNegative", R"(nativeVlan 'et1' -1)",
     R"(slice:1:18: expected a decimal number, found '-'
  nativeVlan 'et1' -1
                   ^)"},
    {"VlanHexadecimal", R"(nativeVlan 'et1' 0x10)",
     R"(slice:1:19: expected the end of the line, found 'x10'
  nativeVlan 'et1' 0x10
                    ^)"},
    {"VlanAboveRange", R"(nativeVlan 'et1' 4095)",
     R"(slice:1:18: expected a VLAN id from 1 to 4094, or 0 for none, found 4095
  nativeVlan 'et1' 4095
                   ^)"},
    {"VlanAboveType", R"(nativeVlan 'et1' 65536)",
     R"(slice:1:18: expected a number from 0 to 65535, found a larger one
  nativeVlan 'et1' 65536
                   ^)"},
    {"VlanTwoValues", R"(nativeVlan 'et1' 10 20)",
     R"(slice:1:21: expected the end of the line, found '20'
  nativeVlan 'et1' 10 20
                      ^)"},
    {"VlanBeforeName", R"(nativeVlan 10 'et1')",
     R"(slice:1:12: expected a string in apostrophes, found '1'
  nativeVlan 10 'et1'
             ^)"},
    {"VlanTwice",
     R"(nativeVlan 'et1' 10
nativeVlan 'et2' 10
nativeVlan 'et1' 20)",
     R"(slice:3:12: nativeVlan 'et1' was given in line 1 already
  nativeVlan 'et1' 20
             ^)"},
    {"VlanNameIsNoPort", R"(nativeVlan 'Management1' 10)",
     R"(slice:1:12: expected an interface name with 'et' in it, found 'Management1'
  nativeVlan 'Management1' 10
             ^)"},
    {"VlanNameWithNul", R"(nativeVlan 'et\x001' 10)",
     R"(slice:1:12: expected an interface name without NUL, found 'et\x001'
  nativeVlan 'et\x001' 10
             ^)"},
    {"ModeUnknown", R"(switchportMode 'et1' 'trunk')",
     R"(slice:1:22: expected 'switchportModeAccess', 'switchportModeTrunk' or 'switchportModeDot1qTunnel', found 'trunk'
  switchportMode 'et1' 'trunk'
                       ^)"},
    {"ModeWithoutApostrophes", R"(switchportMode 'et1' switchportModeTrunk)",
     R"(slice:1:22: expected a string in apostrophes, found 's'
  switchportMode 'et1' switchportModeTrunk
                       ^)"},
    {"ModeNameIsNoPort", R"(switchportMode '' 'switchportModeTrunk')",
     R"(slice:1:16: expected an interface name with 'et' in it, found ''
  switchportMode '' 'switchportModeTrunk'
                 ^)"},
    {"ModeTwice",
     R"(switchportMode 'et1' 'switchportModeTrunk'
switchportMode 'et1' 'switchportModeTrunk')",
     R"(slice:2:16: switchportMode 'et1' was given in line 1 already
  switchportMode 'et1' 'switchportModeTrunk'
                 ^)"},
    {"StateUnknownToMachine", R"(deviceState 'fap0' 'deviceStateUnknown')",
     R"(slice:1:20: expected 'deviceStateUp' or 'deviceStateDown', found 'deviceStateUnknown'
  deviceState 'fap0' 'deviceStateUnknown'
                     ^)"},
    {"StateIsNoState", R"(deviceState 'fap0' 'up')",
     R"(slice:1:20: expected 'deviceStateUp' or 'deviceStateDown', found 'up'
  deviceState 'fap0' 'up'
                     ^)"},
    {"StateOfNamelessDevice", R"(deviceState '' 'deviceStateUp')",
     R"(slice:1:13: expected a device name, found an empty one
  deviceState '' 'deviceStateUp'
              ^)"},
    {"StateMissing", R"(deviceState 'fap0')",
     R"(slice:1:19: expected a string in apostrophes, found the end of the text
  deviceState 'fap0'
                    ^)"},
    {"StateTwice",
     R"(deviceState 'fap0' 'deviceStateUp'
deviceState 'fap0' 'deviceStateDown')",
     R"(slice:2:13: deviceState 'fap0' was given in line 1 already
  deviceState 'fap0' 'deviceStateDown'
              ^)"},
    {"DeviceIsName", R"(device 'fap0')",
     R"(slice:1:8: expected Value, found '''
  device 'fap0'
         ^)"},
    {"DeviceOfOtherType",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'et1'}))",
     R"(slice:1:58: expected 'Hardware::Kest::Slice::KestSliceDmaConfig::Device', found 'S'
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'et1'})
                                                           ^)"},
    {"DeviceWithoutStars",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', * {}))",
     R"(slice:1:68: expected **, found ' '
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', * {})
                                                                     ^)"},
    {"DeviceUnclosed",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0')",
     R"(slice:1:88: premature end of value type Device
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0'
                                                                                         ^)"},
    {"DeviceHalfClosed",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0'})",
     R"(slice:1:89: expected ), found the end of the text
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0'}
                                                                                          ^)"},
    {"DeviceUnknownField",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', 'speed': 3}))",
     R"(slice:1:90: Device has no such attribute: speed
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', 'speed': 3})
                                                                                           ^)"},
    {"DeviceFieldWithoutColon",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName' 'fap0'}))",
     R"(slice:1:81: expected :, found '''
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName' 'fap0'})
                                                                                  ^)"},
    {"DeviceFieldsWithoutComma",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0' 'numFaps': 1}))",
     R"(slice:1:89: expected ,, found '''
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0' 'numFaps': 1})
                                                                                          ^)"},
    {"DeviceTrailingWord",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0'}) up)",
     R"(slice:1:91: expected the end of the line, found 'up'
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0'}) up
                                                                                            ^)"},
    {"DeviceWithoutName",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'numFaps': 2}))",
     R"(slice:1:8: expected a device name, found an empty one
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'numFaps': 2})
         ^)"},
    {"DeviceWithoutState",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0'})  # no state)",
     R"(slice:1:1: expected a deviceState for this device, found none
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0'})  # no state
  ^)"},
    {"DevicesWithoutState",
     R"(deviceState 'fap1' 'deviceStateUp'
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap1'})
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap7'})
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap3'})
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0'})
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap5'}))",
     R"(slice:3:1: expected a deviceState for this device, found none
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap7'})
  ^)"},
    {"DeviceTwice",
     R"(deviceState 'fap0' 'deviceStateUp'
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0'})
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', 'numFaps': 2}))",
     R"(slice:3:8: device 'fap0' was given in line 2 already
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', 'numFaps': 2})
         ^)"},
    {"DeviceNoFaps",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', 'numFaps': 0}))",
     R"(slice:1:104: Device::numFaps < 1 or > 3 not allowed
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', 'numFaps': 0})
                                                                                                         ^)"},
    {"DeviceTooManyFaps",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'numFaps': 4, 'devName': 'fap0'}))",
     R"(slice:1:104: Device::numFaps < 1 or > 3 not allowed
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'numFaps': 4, 'devName': 'fap0'})
                                                                                                         ^)"},
    {"DeviceFapsAboveType",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'numFaps': 4294967296}))",
     R"(slice:1:82: numFaps: expected a number from 0 to 4294967295, found a larger one
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'numFaps': 4294967296})
                                                                                   ^)"},
    {"DeviceNegativePort",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'cpuArad': -1}))",
     R"(slice:1:82: cpuArad: expected a decimal number, found '-'
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'cpuArad': -1})
                                                                                   ^)"},
    {"DeviceChipTypeUnknown",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'fapType': 'fapTypeQuad'}))",
     R"(slice:1:82: fapType: expected 'fapTypeUnknown', 'fapTypeArad' or 'fapTypeAradDual', found 'fapTypeQuad'
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'fapType': 'fapTypeQuad'})
                                                                                   ^)"},
    {"DeviceChipTypeNumber",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'fapType': 1}))",
     R"(slice:1:82: fapType: expected a string in apostrophes, found '1'
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'fapType': 1})
                                                                                   ^)"},
    {"DeviceHandleUndeclared",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': EntityPtr('/pci/9', 'Fru::PciHam')}))",
     R"(slice:1:91: pciHam: there is no entity at '/pci/9'
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': EntityPtr('/pci/9', 'Fru::PciHam')})
                                                                                            ^)"},
    {"DeviceHandleDeclaredBelow",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': EntityPtr('/pci/9', 'Fru::PciHam')})
pciHam '/pci/9')",
     R"(slice:1:91: pciHam: there is no entity at '/pci/9'
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': EntityPtr('/pci/9', 'Fru::PciHam')})
                                                                                            ^)"},
    {"DeviceHandleOfOtherType",
     R"(pciHam '/pci/9'
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': EntityPtr('/pci/9', 'Mox::Dir')}))",
     R"(slice:2:101: pciHam: expected a reference to a 'Fru::PciHam', found one to a 'Mox::Dir'
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': EntityPtr('/pci/9', 'Mox::Dir')})
                                                                                                      ^)"},
    {"DeviceHandleIsDirectory",
     R"(pciHam '/pci/9'
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': EntityPtr('/pci', 'Fru::PciHam')}))",
     R"(slice:2:91: pciHam: expected a 'Fru::PciHam' at '/pci', found a 'Mox::Dir'
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': EntityPtr('/pci', 'Fru::PciHam')})
                                                                                            ^)"},
    {"DeviceHandleIsString",
     R"(device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': '/pci/9'}))",
     R"(slice:1:81: pciHam: expected EntityPtr or None, found '''
  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'pciHam': '/pci/9'})
                                                                                  ^)"},
    {"PortIsName", R"(switchPort 'et1')",
     R"(slice:1:12: expected Value, found '''
  switchPort 'et1'
             ^)"},
    {"PortWithoutName",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'destId': 1}))",
     R"(slice:1:12: expected an interface name with 'et' in it, found ''
  switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'destId': 1})
             ^)"},
    {"PortNameIsNoPort",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'Management1'}))",
     R"(slice:1:12: expected an interface name with 'et' in it, found 'Management1'
  switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'Management1'})
             ^)"},
    {"PortTwice",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'et1'})
switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'et1'}))",
     R"(slice:2:12: switchPort 'et1' was given in line 1 already
  switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'et1'})
             ^)"},
    {"PortFlagLowerCase",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ctrl': true}))",
     R"(slice:1:87: ctrl: expected True or False, found 't'
  switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ctrl': true})
                                                                                        ^)"},
    {"PortFlagNumber",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'hwLag': 1}))",
     R"(slice:1:88: hwLag: expected True or False, found '1'
  switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'hwLag': 1})
                                                                                         ^)"},
    {"PortAddressShort",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'macAddr': '00:1c:73'}))",
     R"(slice:1:90: macAddr: expected a MAC address such as '00:1c:73:0a:0b:0c', found '00:1c:73'
  switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'macAddr': '00:1c:73'})
                                                                                           ^)"},
    {"PortAddressWithoutApostrophes",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'macAddr': 00:1c:73:00:00:01}))",
     R"(slice:1:90: macAddr: expected a string in apostrophes, found '0'
  switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'macAddr': 00:1c:73:00:00:01})
                                                                                           ^)"},
    {"PortNumberIsWord",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'destId': one}))",
     R"(slice:1:89: destId: expected a decimal number, found 'o'
  switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'destId': one})
                                                                                          ^)"},
    {"PortNumberAboveType",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'destId': 4294967296}))",
     R"(slice:1:89: destId: expected a number from 0 to 4294967295, found a larger one
  switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'destId': 4294967296})
                                                                                          ^)"},
    {"PortUnknownField",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'macAddress': ''}))",
     R"(slice:1:79: SwitchPort has no such attribute: macAddress
  switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'macAddress': ''})
                                                                                ^)"},
    {"PortFieldIsType",
     R"(switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'EthAddr': ''}))",
     R"(slice:1:79: SwitchPort has no such attribute: EthAddr
  switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'EthAddr': ''})
                                                                                ^)"},
    {"TabsBeforeTheCaret", "\tnativeVlan\t'et1'\tten",
     "slice:1:19: expected a decimal number, found 't'\n"
     "  \tnativeVlan\t'et1'\tten\n"
     "  \t          \t     \t^"},
    {"LettersOfTwoAndThreeBytesBeforeTheCaret", "sliceId 'Z\303\274rich \342\200\224' x",
     "slice:1:23: expected the end of the line, found 'x'\n"
     "  sliceId 'Z\303\274rich \342\200\224' x\n"
     "                     ^"},
    {"CarriageReturnBeforeTheLineEnd",
     "# c\r\n"
     "sliceId\r\n"
     "nativeVlan",
     R"(slice:2:8: expected a string in apostrophes, found the end of the text
  sliceId
         ^)"},
    {"CarriageReturnInTheLine", "sliceId\r 'a' b",
     "slice:1:14: expected the end of the line, found 'b'\n"
     "  sliceId\r 'a' b\n"
     "               ^"},
    {"StatementMisspelt", R"(natveVlan 'et1' 10)",
     R"(slice:1:1: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, deviceState, end, found 'natveVlan'; did you mean 'nativeVlan'?
  natveVlan 'et1' 10
  ^)"},
    {"ControlCharacter", "nativeVlan 'et1' \001",
     "slice:1:18: expected a decimal number, found character 0x01\n"
     "  nativeVlan 'et1' \001\n"
     "                   ^"},
};

INSTANTIATE_TEST_SUITE_P(Rows, SliceFileError, testing::ValuesIn(fileErrors),
                         [](auto const& row) { return row.param.name; });

}  // namespace
}  // namespace Kest::Agent
