#include <gtest/gtest.h>

#include "platform/mox/Dir.h"
#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

class SliceJsonError : public testing::TestWithParam<ErrorRow> {};

TEST_P(SliceJsonError, SaysWhereWhatWasFoundAndWhatWasExpected) {
  EXPECT_EQ(jsonRefusal(GetParam().text), GetParam().message);
  EXPECT_EQ(Mox::root()->entities(), 0U) << "a refused file left something in the entity tree";
}

ErrorRow const jsonErrors[] = {
    {"ArrayAtTheTop", R"J(["/pci/a"])J",
     R"J(slice.json:1:1: expected an object, found array
  ["/pci/a"]
  ^)J"},
    {"StringAtTheTop", R"J( "slice")J",
     R"J(slice.json:1:2: expected an object, found string
   "slice"
   ^)J"},
    {"NullAtTheTop", R"J(

null)J",
     R"J(slice.json:3:1: expected an object, found null
  null
  ^)J"},
    {"UnknownMember", R"J({"bogus": 1})J",
     R"J(slice.json:1:2: /bogus: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, deviceState, end, found 'bogus'
  {"bogus": 1}
   ^)J"},
    {"MisspeltMember", R"J({"sliceId": "a", "natveVlan": {}})J",
     R"J(slice.json:1:18: /natveVlan: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, deviceState, end, found 'natveVlan'; did you mean 'nativeVlan'?
  {"sliceId": "a", "natveVlan": {}}
                   ^)J"},
    {"MemberInWrongCase", R"J({"SliceId": "a"})J",
     R"J(slice.json:1:2: /SliceId: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, deviceState, end, found 'SliceId'; did you mean 'sliceId'?
  {"SliceId": "a"}
   ^)J"},
    {"MemberOfEveryEntity", R"J({"name": "config"})J",
     R"J(slice.json:1:2: /name: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, deviceState, end, found 'name'
  {"name": "config"}
   ^)J"},
    {"EmptyMember", R"J({"": 1})J",
     R"J(slice.json:1:2: /: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, deviceState, end, found ''
  {"": 1}
   ^)J"},
    {"MemberWithControlCharacter", R"J({"slice\nId": 1})J",
     R"J(slice.json:1:2: /slice\nId: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, deviceState, end, found 'slice\nId'; did you mean 'sliceId'?
  {"slice\nId": 1}
   ^)J"},
    {"SliceIdIsNumber", R"J({"sliceId": 3})J",
     R"J(slice.json:1:2: /sliceId: expected a string, found 3
  {"sliceId": 3}
   ^)J"},
    {"SliceIdIsNull", R"J({"sliceId": null})J",
     R"J(slice.json:1:2: /sliceId: expected a string, found null
  {"sliceId": null}
   ^)J"},
    {"SliceIdIsObject", R"J({"sliceId": {"name": "a"}})J",
     R"J(slice.json:1:2: /sliceId: expected a string, found {"name":"a"}
  {"sliceId": {"name": "a"}}
   ^)J"},
    {"HandlesAreAString", R"J({"pciHam": "/pci/a"})J",
     R"J(slice.json:1:2: /pciHam: expected an array of paths, found string
  {"pciHam": "/pci/a"}
   ^)J"},
    {"HandlesAreAnObject", R"J({"pciHam": {"/pci/a": true}})J",
     R"J(slice.json:1:2: /pciHam: expected an array of paths, found object
  {"pciHam": {"/pci/a": true}}
   ^)J"},
    {"HandleIsNumber", R"J({"pciHam": ["/pci/a", 7]})J",
     R"J(slice.json:1:23: /pciHam/1: expected a path, found number
  {"pciHam": ["/pci/a", 7]}
                        ^)J"},
    {"HandleIsNull", R"J({"pciHam": [null]})J",
     R"J(slice.json:1:13: /pciHam/0: expected a path, found null
  {"pciHam": [null]}
              ^)J"},
    {"HandleWithoutSlash", R"J({"pciHam": ["pci"]})J",
     R"J(slice.json:1:13: /pciHam/0: expected a path such as '/pci/0000:05:00.0', found 'pci'
  {"pciHam": ["pci"]}
              ^)J"},
    {"HandleIsDirectoryPath", R"J({"pciHam": ["/pci/"]})J",
     R"J(slice.json:1:13: /pciHam/0: expected a path such as '/pci/0000:05:00.0', found '/pci/'
  {"pciHam": ["/pci/"]}
              ^)J"},
    {"HandleTwice", R"J({"pciHam": ["/pci/a", "/pci/b", "/pci/a"]})J",
     R"J(slice.json:1:33: /pciHam/2: pciHam '/pci/a' was given in /pciHam/0 already
  {"pciHam": ["/pci/a", "/pci/b", "/pci/a"]}
                                  ^)J"},
    {"HandleBelowHandle", R"J({"pciHam": [
  "/a",
  "/a/b"
]})J",
     R"J(slice.json:3:3: /pciHam/1: expected a directory at '/a', found something else
    "/a/b"
    ^)J"},
    {"CollectionIsArray", R"J({"nativeVlan": [10]})J",
     R"J(slice.json:1:2: /nativeVlan: expected an object of values by their keys, found array
  {"nativeVlan": [10]}
   ^)J"},
    {"CollectionIsNumber", R"J({"nativeVlan": 10})J",
     R"J(slice.json:1:2: /nativeVlan: expected an object of values by their keys, found number
  {"nativeVlan": 10}
   ^)J"},
    {"CollectionIsNull", R"J({"switchPort": null})J",
     R"J(slice.json:1:2: /switchPort: expected an object of values by their keys, found null
  {"switchPort": null}
   ^)J"},
    {"VlanIsString", R"J({"nativeVlan": {"et1": "10"}})J",
     R"J(slice.json:1:17: /nativeVlan/et1: expected a whole number from 0, found "10"
  {"nativeVlan": {"et1": "10"}}
                  ^)J"},
    {"VlanIsFraction", R"J({"nativeVlan": {"et1": 10.5}})J",
     R"J(slice.json:1:17: /nativeVlan/et1: expected a whole number from 0, found 10.5
  {"nativeVlan": {"et1": 10.5}}
                  ^)J"},
    {"VlanIsFloating", R"J({"nativeVlan": {"et1": 10.0}})J",
     R"J(slice.json:1:17: /nativeVlan/et1: expected a whole number from 0, found 10.0
  {"nativeVlan": {"et1": 10.0}}
                  ^)J"},
    {"VlanIsNegative", R"J({"nativeVlan": {"et1": -1}})J",
     R"J(slice.json:1:17: /nativeVlan/et1: expected a whole number from 0, found -1
  {"nativeVlan": {"et1": -1}}
                  ^)J"},
    {"VlanIsFlag", R"J({"nativeVlan": {"et1": true}})J",
     R"J(slice.json:1:17: /nativeVlan/et1: expected a whole number from 0, found true
  {"nativeVlan": {"et1": true}}
                  ^)J"},
    {"VlanIsObject", R"J({"nativeVlan": {"et1": {"vlan": 10}}})J",
     R"J(slice.json:1:17: /nativeVlan/et1: expected a whole number from 0, found {"vlan":10}
  {"nativeVlan": {"et1": {"vlan": 10}}}
                  ^)J"},
    {"VlanAboveRange", R"J({"nativeVlan": {"et1": 4095}})J",
     R"J(slice.json:1:17: /nativeVlan/et1: expected a VLAN id from 1 to 4094, or 0 for none, found 4095
  {"nativeVlan": {"et1": 4095}}
                  ^)J"},
    {"VlanAboveType", R"J({"nativeVlan": {"et1": 65536}})J",
     R"J(slice.json:1:17: /nativeVlan/et1: expected a number from 0 to 65535, found a larger one
  {"nativeVlan": {"et1": 65536}}
                  ^)J"},
    {"VlanAboveEveryType", R"J({"nativeVlan": {"et1": 18446744073709551616}})J",
     R"J(slice.json:1:17: /nativeVlan/et1: expected a whole number from 0, found 1.8446744073709552e+19
  {"nativeVlan": {"et1": 18446744073709551616}}
                  ^)J"},
    {"VlanNameIsNoPort", R"J({"nativeVlan": {"Management1": 10}})J",
     R"J(slice.json:1:17: /nativeVlan/Management1: expected an interface name with 'et' in it, found 'Management1'
  {"nativeVlan": {"Management1": 10}}
                  ^)J"},
    {"VlanNameIsEmpty", R"J({"nativeVlan": {"": 10}})J",
     R"J(slice.json:1:17: /nativeVlan/: expected an interface name with 'et' in it, found ''
  {"nativeVlan": {"": 10}}
                  ^)J"},
    {"VlanNameWithNul", R"J({"nativeVlan": {"et\u00001": 10}})J",
     R"J(slice.json:1:17: /nativeVlan/et\x001: expected an interface name without NUL, found 'et\x001'
  {"nativeVlan": {"et\u00001": 10}}
                  ^)J"},
    {"ModeUnknown", R"J({"switchportMode": {"et1": "trunk"}})J",
     R"J(slice.json:1:21: /switchportMode/et1: expected 'switchportModeAccess', 'switchportModeTrunk' or 'switchportModeDot1qTunnel', found 'trunk'
  {"switchportMode": {"et1": "trunk"}}
                      ^)J"},
    {"ModeIsNumber", R"J({"switchportMode": {"et1": 1}})J",
     R"J(slice.json:1:21: /switchportMode/et1: expected a string, found 1
  {"switchportMode": {"et1": 1}}
                      ^)J"},
    {"ModeNameIsNoPort", R"J({"switchportMode": {"fap0": "switchportModeTrunk"}})J",
     R"J(slice.json:1:21: /switchportMode/fap0: expected an interface name with 'et' in it, found 'fap0'
  {"switchportMode": {"fap0": "switchportModeTrunk"}}
                      ^)J"},
    {"StateUnknownToMachine", R"J({"deviceState": {"fap0": "deviceStateUnknown"}})J",
     R"J(slice.json:1:18: /deviceState/fap0: expected 'deviceStateUp' or 'deviceStateDown', found 'deviceStateUnknown'
  {"deviceState": {"fap0": "deviceStateUnknown"}}
                   ^)J"},
    {"StateIsNoState", R"J({"deviceState": {"fap0": "up"}})J",
     R"J(slice.json:1:18: /deviceState/fap0: expected 'deviceStateUp' or 'deviceStateDown', found 'up'
  {"deviceState": {"fap0": "up"}}
                   ^)J"},
    {"StateIsFlag", R"J({"deviceState": {"fap0": true}})J",
     R"J(slice.json:1:18: /deviceState/fap0: expected a string, found true
  {"deviceState": {"fap0": true}}
                   ^)J"},
    {"StateOfNamelessDevice", R"J({"deviceState": {"": "deviceStateUp"}})J",
     R"J(slice.json:1:18: /deviceState/: expected a device name, found an empty one
  {"deviceState": {"": "deviceStateUp"}}
                   ^)J"},
    {"DeviceIsString", R"J({"device": {"fap0": "up"}})J",
     R"J(slice.json:1:13: /device/fap0: expected an object of fields, found string
  {"device": {"fap0": "up"}}
              ^)J"},
    {"DeviceIsTextForm", R"J({"device": {"fap0": "Value('Device', ** {})"}})J",
     R"J(slice.json:1:13: /device/fap0: expected an object of fields, found string
  {"device": {"fap0": "Value('Device', ** {})"}}
              ^)J"},
    {"DeviceIsNull", R"J({"device": {"fap0": null}})J",
     R"J(slice.json:1:13: /device/fap0: expected an object of fields, found null
  {"device": {"fap0": null}}
              ^)J"},
    {"DeviceNameless", R"J({"device": {"": {}}, "deviceState": {"": "deviceStateUp"}})J",
     R"J(slice.json:1:13: /device/: expected a device name, found an empty one
  {"device": {"": {}}, "deviceState": {"": "deviceStateUp"}}
              ^)J"},
    {"DeviceWithoutState", R"J({"device": {"fap0": {}}})J",
     R"J(slice.json:1:13: /device/fap0: expected a deviceState for this device, found none
  {"device": {"fap0": {}}}
              ^)J"},
    {"DevicesWithoutState", R"J({
  "deviceState": {"fap1": "deviceStateUp"},
  "device": {
    "fap1": {},
    "fap7": {},
    "fap3": {}
  }
})J",
     R"J(slice.json:5:5: /device/fap7: expected a deviceState for this device, found none
      "fap7": {},
      ^)J"},
    {"DeviceUnknownField", R"J({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"speed": 3}}})J",
     R"J(slice.json:2:22: /device/fap0/speed: expected one of devName, pciHam, fapType, numFaps, cpuTmSysPort, cpuEthSysPort, cpuRawSysPort, sflowPort, cpuAradSysPort, cpuArad, cpuAradBridge, found 'speed'
   "device": {"fap0": {"speed": 3}}}
                       ^)J"},
    {"DeviceMisspeltField", R"J({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"numFap": 3}}})J",
     R"J(slice.json:2:22: /device/fap0/numFap: expected one of devName, pciHam, fapType, numFaps, cpuTmSysPort, cpuEthSysPort, cpuRawSysPort, sflowPort, cpuAradSysPort, cpuArad, cpuAradBridge, found 'numFap'; did you mean 'numFaps'?
   "device": {"fap0": {"numFap": 3}}}
                       ^)J"},
    {"DeviceOtherName", R"J({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"devName": "fap1"}}})J",
     R"J(slice.json:2:22: /device/fap0/devName: expected "fap0", the key of the entry, found "fap1"
   "device": {"fap0": {"devName": "fap1"}}}
                       ^)J"},
    {"DeviceNameIsNumber", R"J({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"devName": 0}}})J",
     R"J(slice.json:2:22: /device/fap0/devName: expected a string, found 0
   "device": {"fap0": {"devName": 0}}}
                       ^)J"},
    {"DeviceNoFaps", R"J({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"cpuArad": 1, "numFaps": 0}}})J",
     R"J(slice.json:2:13: /device/fap0: Device::numFaps < 1 or > 3 not allowed
   "device": {"fap0": {"cpuArad": 1, "numFaps": 0}}}
              ^)J"},
    {"DeviceTooManyFaps", R"J({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"numFaps": 4}}})J",
     R"J(slice.json:2:13: /device/fap0: Device::numFaps < 1 or > 3 not allowed
   "device": {"fap0": {"numFaps": 4}}}
              ^)J"},
    {"DeviceChipTypeUnknown", R"J({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"fapType": "fapTypeQuad"}}})J",
     R"J(slice.json:2:22: /device/fap0/fapType: expected 'fapTypeUnknown', 'fapTypeArad' or 'fapTypeAradDual', found 'fapTypeQuad'
   "device": {"fap0": {"fapType": "fapTypeQuad"}}}
                       ^)J"},
    {"DevicePortAboveType", R"J({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"cpuArad": 4294967296}}})J",
     R"J(slice.json:2:22: /device/fap0/cpuArad: expected a number from 0 to 4294967295, found a larger one
   "device": {"fap0": {"cpuArad": 4294967296}}}
                       ^)J"},
    {"DeviceHandleUndeclared", R"J({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"pciHam": "/pci/9"}}})J",
     R"J(slice.json:2:22: /device/fap0/pciHam: there is no entity at '/pci/9'
   "device": {"fap0": {"pciHam": "/pci/9"}}}
                       ^)J"},
    {"DeviceHandleIsDirectory", R"J({"pciHam": ["/pci/9"],
 "deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"pciHam": "/pci"}}})J",
     R"J(slice.json:3:22: /device/fap0/pciHam: expected a 'Fru::PciHam' at '/pci', found a 'Mox::Dir'
   "device": {"fap0": {"pciHam": "/pci"}}}
                       ^)J"},
    {"DeviceHandleIsTextForm", R"J({"pciHam": ["/pci/9"],
 "deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"pciHam": "EntityPtr('/pci/9', 'Fru::PciHam')"}}})J",
     R"J(slice.json:3:22: /device/fap0/pciHam: there is no entity at 'EntityPtr('/pci/9', 'Fru::PciHam')'
   "device": {"fap0": {"pciHam": "EntityPtr('/pci/9', 'Fru::PciHam')"}}}
                       ^)J"},
    {"DeviceHandleIsNumber", R"J({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"pciHam": 9}}})J",
     R"J(slice.json:2:22: /device/fap0/pciHam: expected a path or null, found 9
   "device": {"fap0": {"pciHam": 9}}}
                       ^)J"},
    {"PortIsArray", R"J({"switchPort": {"et1": []}})J",
     R"J(slice.json:1:17: /switchPort/et1: expected an object of fields, found array
  {"switchPort": {"et1": []}}
                  ^)J"},
    {"PortNameIsNoPort", R"J({"switchPort": {"Management1": {}}})J",
     R"J(slice.json:1:17: /switchPort/Management1: expected an interface name with 'et' in it, found 'Management1'
  {"switchPort": {"Management1": {}}}
                  ^)J"},
    {"PortOtherName", R"J({"switchPort": {"et1": {"ifName": "et2"}}})J",
     R"J(slice.json:1:25: /switchPort/et1/ifName: expected "et1", the key of the entry, found "et2"
  {"switchPort": {"et1": {"ifName": "et2"}}}
                          ^)J"},
    {"PortNumberIsWord", R"J({"switchPort": {"et3/1": {"ctrl": true, "destId": "one"}}})J",
     R"J(slice.json:1:41: /switchPort/et3~11/destId: expected a whole number from 0, found "one"
  {"switchPort": {"et3/1": {"ctrl": true, "destId": "one"}}}
                                          ^)J"},
    {"PortNumberAboveType", R"J({"switchPort": {"et3/1": {"destId": 4294967296}}})J",
     R"J(slice.json:1:27: /switchPort/et3~11/destId: expected a number from 0 to 4294967295, found a larger one
  {"switchPort": {"et3/1": {"destId": 4294967296}}}
                            ^)J"},
    {"PortNumberIsNull", R"J({"switchPort": {"et3/1": {"destId": null}}})J",
     R"J(slice.json:1:27: /switchPort/et3~11/destId: expected a whole number from 0, found null
  {"switchPort": {"et3/1": {"destId": null}}}
                            ^)J"},
    {"PortFlagIsNumber", R"J({"switchPort": {"et3/1": {"hwLag": 1}}})J",
     R"J(slice.json:1:27: /switchPort/et3~11/hwLag: expected true or false, found 1
  {"switchPort": {"et3/1": {"hwLag": 1}}}
                            ^)J"},
    {"PortFlagIsWord", R"J({"switchPort": {"et3/1": {"hwLag": "True"}}})J",
     R"J(slice.json:1:27: /switchPort/et3~11/hwLag: expected true or false, found "True"
  {"switchPort": {"et3/1": {"hwLag": "True"}}}
                            ^)J"},
    {"PortAddressShort", R"J({"switchPort": {"et3/1": {"macAddr": "00:1c:73"}}})J",
     R"J(slice.json:1:27: /switchPort/et3~11/macAddr: expected a MAC address such as '00:1c:73:0a:0b:0c', found '00:1c:73'
  {"switchPort": {"et3/1": {"macAddr": "00:1c:73"}}}
                            ^)J"},
    {"PortAddressIsNumber", R"J({"switchPort": {"et3/1": {"macAddr": 1}}})J",
     R"J(slice.json:1:27: /switchPort/et3~11/macAddr: expected a string, found 1
  {"switchPort": {"et3/1": {"macAddr": 1}}}
                            ^)J"},
    {"PortFieldIsObject", R"J({"switchPort": {"et3/1": {"destId": {"is": [1, 2, 3]}}}})J",
     R"J(slice.json:1:27: /switchPort/et3~11/destId: expected a whole number from 0, found {"is":[1,2,3]}
  {"switchPort": {"et3/1": {"destId": {"is": [1, 2, 3]}}}}
                            ^)J"},
    {"NameWithTildeAndSlash", R"J({"nativeVlan": {"et~1/2": -3}})J",
     R"J(slice.json:1:17: /nativeVlan/et~01~12: expected a whole number from 0, found -3
  {"nativeVlan": {"et~1/2": -3}}
                  ^)J"},
    {"NameWithApostropheAndLine", R"J({"nativeVlan": {"et'\n": -3}})J",
     R"J(slice.json:1:17: /nativeVlan/et\'\n: expected a whole number from 0, found -3
  {"nativeVlan": {"et'\n": -3}}
                  ^)J"},
    {"LettersOfTwoAndThreeBytesBeforeTheCaret",
     "{\"sliceId\": \"Z\303\274rich \342\200\224\", \"bogus\": 1}",
     "slice.json:1:28: /bogus: expected one of pciHam, sliceId, switchPort, nativeVlan, "
     "switchportMode, device, deviceState, end, found 'bogus'\n"
     "  {\"sliceId\": \"Z\303\274rich \342\200\224\", \"bogus\": 1}\n"
     "                          ^"},
    {"CarriageReturns",
     "{\r\n"
     "  \"nativeVlan\": {\r\n"
     "\t\"et1\": -1\r\n"
     "  }\r\n"
     "}\r\n",
     "slice.json:3:2: /nativeVlan/et1: expected a whole number from 0, found -1\n"
     "  \t\"et1\": -1\n"
     "  \t^"},
    {"ValueBehindANumber", R"J({"nativeVlan": {"et1":1,"et2":-1}})J",
     R"J(slice.json:1:25: /nativeVlan/et2: expected a whole number from 0, found -1
  {"nativeVlan": {"et1":1,"et2":-1}}
                          ^)J"},
    {"ValueBehindNestedOnes",
     R"J({"switchPort":{"et1":{"destId":1},"et2":{"destId":2}},"device":[[1],{"a":[2]}],"x":{}})J",
     R"J(slice.json:1:55: /device: expected an object of values by their keys, found array
  {"switchPort":{"et1":{"destId":1},"et2":{"destId":2}},"device":[[1],{"a":[2]}],"x":{}}
                                                        ^)J"},
};

INSTANTIATE_TEST_SUITE_P(Rows, SliceJsonError, testing::ValuesIn(jsonErrors),
                         [](auto const& row) { return row.param.name; });

}  // namespace
}  // namespace Kest::Agent
