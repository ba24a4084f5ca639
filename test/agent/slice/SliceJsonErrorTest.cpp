#include <gtest/gtest.h>

#include "platform/mox/Dir.h"
#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

class SliceJsonError : public testing::TestWithParam<ErrorRow> {};

TEST_P(SliceJsonError, SaysWhereWhatWasFoundAndWhatWasExpected) {
  EXPECT_EQ(jsonRefusal(GetParam().text), reportOf(GetParam(), "slice.json"));
  EXPECT_EQ(Mox::root()->entities(), 0U) << "a refused file left something in the entity tree";
}

ErrorRow const jsonErrors[] = {
    {"ArrayAtTheTop", R"(["/pci/a"])", "1:1", "expected an object, found array"},
    {"NullAtTheTop", R"(

null)",
     "3:1", "expected an object, found null"},
    {"UnknownMember", R"({"bogus": 1})", "1:2",
     "/bogus: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, "
     "deviceState, end, found 'bogus'"},
    {"MisspeltMember", R"({"sliceId": "a", "natveVlan": {}})", "1:18",
     "/natveVlan: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, "
     "deviceState, end, found 'natveVlan'; did you mean 'nativeVlan'?"},
    {"MemberOfEveryEntity", R"({"name": "config"})", "1:2",
     "/name: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, "
     "deviceState, end, found 'name'"},
    {"EmptyMember", R"({"": 1})", "1:2",
     "/: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, "
     "deviceState, end, found ''"},
    {"MemberWithControlCharacter", R"({"slice\nId": 1})", "1:2",
     R"(/slice\x0aId: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, deviceState, end, found 'slice\nId'; did you mean 'sliceId'?)"},
    {"SliceIdIsNumber", R"({"sliceId": 3})", "1:2", "/sliceId: expected a string, found 3"},
    {"HandlesAreAString", R"({"pciHam": "/pci/a"})", "1:2",
     "/pciHam: expected an array of paths, found string"},
    {"HandleIsNumber", R"({"pciHam": ["/pci/a", 7]})", "1:23",
     "/pciHam/1: expected a path, found number"},
    {"HandleWithoutSlash", R"({"pciHam": ["pci"]})", "1:13",
     "/pciHam/0: expected a path such as '/pci/0000:05:00.0', found 'pci'"},
    {"HandleTwice", R"({"pciHam": ["/pci/a", "/pci/b", "/pci/a"]})", "1:33",
     "/pciHam/2: pciHam '/pci/a' was given in /pciHam/0 already"},
    {"HandleBelowHandle", R"({"pciHam": [
  "/a",
  "/a/b"
]})",
     "3:3", "/pciHam/1: expected a directory at '/a', found something else"},
    {"CollectionIsArray", R"({"nativeVlan": [10]})", "1:2",
     "/nativeVlan: expected an object of values by their keys, found array"},
    {"CollectionIsNull", R"({"switchPort": null})", "1:2",
     "/switchPort: expected an object of values by their keys, found null"},
    {"VlanIsString", R"({"nativeVlan": {"et1": "10"}})", "1:17",
     R"(/nativeVlan/et1: expected a whole number from 0, found "10")"},
    {"VlanIsFloating", R"({"nativeVlan": {"et1": 10.0}})", "1:17",
     "/nativeVlan/et1: expected a whole number from 0, found 10.0"},
    {"VlanAboveRange", R"({"nativeVlan": {"et1": 4095}})", "1:17",
     "/nativeVlan/et1: expected a VLAN id from 1 to 4094, or 0 for none, found 4095"},
    {"VlanAboveType", R"({"nativeVlan": {"et1": 65536}})", "1:17",
     "/nativeVlan/et1: expected a number from 0 to 65535, found a larger one"},
    {"VlanNameIsNoPort", R"({"nativeVlan": {"Management1": 10}})", "1:17",
     "/nativeVlan/Management1: expected an interface name with 'et' in it, found 'Management1'"},
    {"VlanNameWithNul", R"({"nativeVlan": {"et\u00001": 10}})", "1:17",
     R"(/nativeVlan/et\x001: expected an interface name without NUL, found 'et\x001')"},
    {"ModeUnknown", R"({"switchportMode": {"et1": "trunk"}})", "1:21",
     "/switchportMode/et1: expected 'switchportModeAccess', 'switchportModeTrunk' or "
     "'switchportModeDot1qTunnel', found 'trunk'"},
    {"ModeNameIsNoPort", R"({"switchportMode": {"fap0": "switchportModeTrunk"}})", "1:21",
     "/switchportMode/fap0: expected an interface name with 'et' in it, found 'fap0'"},
    {"StateUnknownToMachine", R"({"deviceState": {"fap0": "deviceStateUnknown"}})", "1:18",
     "/deviceState/fap0: expected 'deviceStateUp' or 'deviceStateDown', found "
     "'deviceStateUnknown'"},
    {"StateIsNoState", R"({"deviceState": {"fap0": "up"}})", "1:18",
     "/deviceState/fap0: expected 'deviceStateUp' or 'deviceStateDown', found 'up'"},
    {"StateIsFlag", R"({"deviceState": {"fap0": true}})", "1:18",
     "/deviceState/fap0: expected a string, found true"},
    {"StateOfNamelessDevice", R"({"deviceState": {"": "deviceStateUp"}})", "1:18",
     "/deviceState/: expected a device name, found an empty one"},
    {"DeviceIsString", R"({"device": {"fap0": "up"}})", "1:13",
     "/device/fap0: expected an object of fields, found string"},
    {"DeviceNameless", R"({"device": {"": {}}, "deviceState": {"": "deviceStateUp"}})", "1:13",
     "/device/: expected a device name, found an empty one"},
    {"DevicesWithoutState", R"({
  "deviceState": {"fap1": "deviceStateUp"},
  "device": {
    "fap1": {},
    "fap7": {},
    "fap3": {}
  }
})",
     "5:5", "/device/fap7: expected a deviceState for this device, found none"},
    {"DeviceUnknownField", R"({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"speed": 3}}})",
     "2:22",
     "/device/fap0/speed: expected one of devName, pciHam, fapType, numFaps, cpuTmSysPort, "
     "cpuEthSysPort, cpuRawSysPort, sflowPort, cpuAradSysPort, cpuArad, cpuAradBridge, found "
     "'speed'"},
    {"DeviceMisspeltField", R"({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"numFap": 3}}})",
     "2:22",
     "/device/fap0/numFap: expected one of devName, pciHam, fapType, numFaps, cpuTmSysPort, "
     "cpuEthSysPort, cpuRawSysPort, sflowPort, cpuAradSysPort, cpuArad, cpuAradBridge, found "
     "'numFap'; did you mean 'numFaps'?"},
    {"DeviceOtherName", R"({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"devName": "fap1"}}})",
     "2:22", R"(/device/fap0/devName: expected "fap0", the key of the entry, found "fap1")"},
    {"DeviceNameIsNumber", R"({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"devName": 0}}})",
     "2:22", "/device/fap0/devName: expected a string, found 0"},
    {"DeviceTooManyFaps", R"({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"numFaps": 4}}})",
     "2:13", "/device/fap0: Device::numFaps < 1 or > 3 not allowed"},
    {"DeviceHandleUndeclared", R"({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"pciHam": "/pci/9"}}})",
     "2:22", "/device/fap0/pciHam: there is no entity at '/pci/9'"},
    {"DeviceHandleIsDirectory", R"({"pciHam": ["/pci/9"],
 "deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"pciHam": "/pci"}}})",
     "3:22", "/device/fap0/pciHam: expected a 'Fru::PciHam' at '/pci', found a 'Mox::Dir'"},
    {"PortIsArray", R"({"switchPort": {"et1": []}})", "1:17",
     "/switchPort/et1: expected an object of fields, found array"},
    {"PortNameIsNoPort", R"({"switchPort": {"Management1": {}}})", "1:17",
     "/switchPort/Management1: expected an interface name with 'et' in it, found 'Management1'"},
    {"PortOtherName", R"({"switchPort": {"et1": {"ifName": "et2"}}})", "1:25",
     R"(/switchPort/et1/ifName: expected "et1", the key of the entry, found "et2")"},
    {"PortNumberIsWord", R"({"switchPort": {"et3/1": {"ctrl": true, "destId": "one"}}})", "1:41",
     R"(/switchPort/et3~11/destId: expected a whole number from 0, found "one")"},
    {"PortFlagIsNumber", R"({"switchPort": {"et3/1": {"hwLag": 1}}})", "1:27",
     "/switchPort/et3~11/hwLag: expected true or false, found 1"},
    {"PortAddressShort", R"({"switchPort": {"et3/1": {"macAddr": "00:1c:73"}}})", "1:27",
     "/switchPort/et3~11/macAddr: expected a MAC address such as '00:1c:73:0a:0b:0c', found "
     "'00:1c:73'"},
    {"NameWithTildeAndSlash", R"({"nativeVlan": {"et~1/2": -3}})", "1:17",
     "/nativeVlan/et~01~12: expected a whole number from 0, found -3"},
    {"NameWithApostropheAndLine", R"({"nativeVlan": {"et'\n": -3}})", "1:17",
     R"(/nativeVlan/et'\x0a: expected a whole number from 0, found -3)"},
    {"ValueAfterANumber", R"({"nativeVlan": {"et1":1,"et2":-1}})", "1:25",
     "/nativeVlan/et2: expected a whole number from 0, found -1"},
    {"ValueAfterNestedOnes",
     R"({"switchPort":{"et1":{"destId":1},"et2":{"destId":2}},"device":[[1],{"a":[2]}],"x":{}})",
     "1:55", "/device: expected an object of values by their keys, found array"},
};

INSTANTIATE_TEST_SUITE_P(Rows, SliceJsonError, testing::ValuesIn(jsonErrors),
                         [](auto const& row) { return row.param.name; });

TEST(SliceJsonCaret, StandsBelowTheCharacterWhateverIsBeforeIt) {
  struct {
    char const* text;
    char const* report;
  } const table[] = {
      {"{\"sliceId\": \"Z\303\274rich \342\200\224\", \"bogus\": 1}",
       "slice.json:1:28: /bogus: expected one of pciHam, sliceId, switchPort, nativeVlan, "
       "switchportMode, device, deviceState, end, found 'bogus'\n  {\"sliceId\": \"Z\303\274rich "
       "\342\200\224\", \"bogus\": 1}\n                          ^"},
      {"{\r\n  \"nativeVlan\": {\r\n\t\"et1\": -1\r\n  }\r\n}\r\n",
       "slice.json:3:2: /nativeVlan/et1: expected a whole number from 0, found -1\n  \t\"et1\": "
       "-1\n  \t^"},
  };
  for (auto const& row : table) EXPECT_EQ(jsonRefusal(row.text), row.report);
}

}  // namespace
}  // namespace Kest::Agent
