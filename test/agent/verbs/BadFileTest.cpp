#include "test/agent/support/RefusedRequests.h"

namespace Kest::Agent {
namespace {

using BadFile = RefusedRequests;

TEST_F(BadFile, IsRefusedWithItsWholeReport) {
  expectRefused({
      {R"({"verb":"apply","file":"x.slice","content":"junk"})",
       "file: x.slice:1:1: expected one of pciHam, sliceId, switchPort, nativeVlan, "
       "switchportMode, device, deviceState, end, found 'junk'\n  junk\n  ^"},
      {R"({"verb":"apply","file":"x.slice","content":"sliceId"})",
       "file: x.slice:1:8: expected a string in apostrophes, found the end of the text\n  "
       "sliceId\n         ^"},
      {R"({"verb":"apply","file":"x.slice","content":"sliceId 'a"})",
       "file: x.slice:1:11: expected the string's closing apostrophe, found the end of the text\n  "
       "sliceId 'a\n            ^"},
      {R"({"verb":"apply","file":"x.slice","content":"sliceId 'a' b"})",
       "file: x.slice:1:13: expected the end of the line, found 'b'\n  sliceId 'a' b\n             "
       " ^"},
      {R"({"verb":"apply","file":"x.slice","content":"sliceId 'a'\nsliceId 'b'"})",
       "file: x.slice:2:1: sliceId was given in line 1 already\n  sliceId 'b'\n  ^"},
      {R"({"verb":"apply","file":"x.slice","content":"nativeVlan 'et1' 4095"})",
       "file: x.slice:1:18: expected a VLAN id from 1 to 4094, or 0 for none, found 4095\n  "
       "nativeVlan 'et1' 4095\n                   ^"},
      {R"({"verb":"apply","file":"x.slice","content":"nativeVlan 'et1' 65536"})",
       "file: x.slice:1:18: expected a number from 0 to 65535, found a larger one\n  nativeVlan "
       "'et1' 65536\n                   ^"},
      {R"({"verb":"apply","file":"x.slice","content":"nativeVlan 'x1' 1"})",
       "file: x.slice:1:12: expected an interface name with 'et' in it, found 'x1'\n  nativeVlan "
       "'x1' 1\n             ^"},
      {R"({"verb":"apply","file":"x.slice","content":"nativeVlan 'et1\\x00' 1"})",
       "file: x.slice:1:12: expected an interface name without NUL, found 'et1\\x00'\n  nativeVlan "
       "'et1\\x00' 1\n             ^"},
      {R"({"verb":"apply","file":"x.slice","content":"deviceState 'fap0' 'deviceStateUnknown'"})",
       "file: x.slice:1:20: expected 'deviceStateUp' or 'deviceStateDown', found "
       "'deviceStateUnknown'\n  deviceState 'fap0' 'deviceStateUnknown'\n                     ^"},
      {R"({"verb":"apply","file":"x.slice","content":"deviceState '' 'deviceStateUp'"})",
       "file: x.slice:1:13: expected a device name, found an empty one\n  deviceState '' "
       "'deviceStateUp'\n              ^"},
      {R"({"verb":"apply","file":"x.slice","content":"switchportMode 'et1' 'wild'"})",
       "file: x.slice:1:22: expected 'switchportModeAccess', 'switchportModeTrunk' or "
       "'switchportModeDot1qTunnel', found 'wild'\n  switchportMode 'et1' 'wild'\n                 "
       "      ^"},
      {R"({"verb":"apply","file":"x.slice","content":"pciHam 'relative'"})",
       "file: x.slice:1:8: expected a path such as '/pci/0000:05:00.0', found 'relative'\n  pciHam "
       "'relative'\n         ^"},
      {R"~({"verb":"apply","file":"x.slice","content":"device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap1'})"})~",
       "file: x.slice:1:1: expected a deviceState for this device, found none\n  device "
       "Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap1'})\n  ^"},
      {R"~({"verb":"apply","file":"x.slice","content":"switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'x'})"})~",
       "file: x.slice:1:12: expected an interface name with 'et' in it, found 'x'\n  switchPort "
       "Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'x'})\n       "
       "      ^"},
      {R"({"verb":"apply","file":"x.json","content":""})",
       "file: x.json:1:1: no JSON: unexpected end of input; expected '[', '{', or a literal\n  \n  "
       "^"},
      {R"({"verb":"apply","file":"x.json","content":"[]"})",
       "file: x.json:1:1: expected an object, found array\n  []\n  ^"},
      {R"({"verb":"apply","file":"x.json","content":"{\"sliceID\": \"x\"}"})",
       "file: x.json:1:2: /sliceID: expected one of pciHam, sliceId, switchPort, nativeVlan, "
       "switchportMode, device, deviceState, end, found 'sliceID'; did you mean 'sliceId'?\n  "
       "{\"sliceID\": \"x\"}\n   ^"},
      {R"({"verb":"apply","file":"x.json","content":"{\"sliceId\": 7}"})",
       "file: x.json:1:2: /sliceId: expected a string, found 7\n  {\"sliceId\": 7}\n   ^"},
      {R"({"verb":"apply","file":"x.json","content":"{\"sliceId\": 1e400}"})",
       "file: x.json:1:17: no JSON: number overflow\n  {\"sliceId\": 1e400}\n                  ^"},
      {R"({"verb":"apply","file":"x.json","content":"{\"nativeVlan\": {\"et1\": 4095}}"})",
       "file: x.json:1:17: /nativeVlan/et1: expected a VLAN id from 1 to 4094, or 0 for none, "
       "found 4095\n  {\"nativeVlan\": {\"et1\": 4095}}\n                  ^"},
      {R"({"verb":"apply","file":"x.json","content":"{\"nativeVlan\": {\"x1\": 1}}"})",
       "file: x.json:1:17: /nativeVlan/x1: expected an interface name with 'et' in it, found "
       "'x1'\n  {\"nativeVlan\": {\"x1\": 1}}\n                  ^"},
      {R"({"verb":"apply","file":"x.json","content":"{\"nativeVlan\": {\"et\\u0000\": 1}}"})",
       "file: x.json:1:17: /nativeVlan/et\\x00: expected an interface name without NUL, found "
       "'et\\x00'\n  {\"nativeVlan\": {\"et\\u0000\": 1}}\n                  ^"},
      {R"({"verb":"apply","file":"","content":"junk"})",
       "file: :1:1: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, "
       "device, deviceState, end, found 'junk'\n  junk\n  ^"},
      {R"({"verb":"diff","file":"x.slice","content":"junk"})",
       "file: x.slice:1:1: expected one of pciHam, sliceId, switchPort, nativeVlan, "
       "switchportMode, device, deviceState, end, found 'junk'\n  junk\n  ^"},
      {R"({"verb":"diff","file":"x.slice","content":"nativeVlan 'et1' 4095"})",
       "file: x.slice:1:18: expected a VLAN id from 1 to 4094, or 0 for none, found 4095\n  "
       "nativeVlan 'et1' 4095\n                   ^"},
      {R"({"verb":"diff","file":"x.json","content":"{"})",
       "file: x.json:1:2: no JSON: unexpected end of input; expected string literal\n  {\n   ^"},
      {R"({"verb":"driver","action":"fault","text":"junk"})",
       "file: faults:1:1: expected fail or flip, found 'junk'"},
      {R"({"verb":"driver","action":"fault","text":"fail"})",
       "file: faults:1:5: expected the name of a driver operation, found the end of the line"},
      {R"({"verb":"driver","action":"fault","text":"fail kestDmaNothing * 5 always"})",
       "file: faults:1:6: expected the name of a driver operation, found 'kestDmaNothing'"},
      {R"({"verb":"driver","action":"fault","text":"fail kestDmaDump * 5 always"})",
       "file: faults:1:6: expected a driver operation that has a result, found 'kestDmaDump'"},
      {R"({"verb":"driver","action":"fault","text":"fail kestDmaIfadd et1 5 always"})",
       "file: faults:1:19: expected a name in apostrophes or *, found 'et1'"},
      {R"({"verb":"driver","action":"fault","text":"fail kestDmaIfadd * 0 always"})",
       "file: faults:1:21: expected an error number from 1 to 4095, found 0"},
      {R"({"verb":"driver","action":"fault","text":"fail kestDmaIfadd * 4096 always"})",
       "file: faults:1:21: expected an error number from 1 to 4095, found 4096"},
      {R"({"verb":"driver","action":"fault","text":"fail kestDmaIfadd * 5 sometimes"})",
       "file: faults:1:23: expected times or always, found 'sometimes'"},
      {R"({"verb":"driver","action":"fault","text":"fail kestDmaIfadd * 5 times 0"})",
       "file: faults:1:29: expected a count from 1 to 4294967295, found 0"},
      {R"({"verb":"driver","action":"fault","text":"fail kestDmaIfadd * 5 times 99999999999"})",
       "file: faults:1:29: expected a number from 0 to 4294967295, found a larger one"},
      {R"({"verb":"driver","action":"fault","text":"fail kestDmaIfadd * 5 always\nflip 'fap7'"})",
       "file: faults:2:6: expected the name of a device that there is, found 'fap7'"},
      {R"({"verb":"driver","action":"fault","text":"fail kestDmaIfadd * 5 always x"})",
       "file: faults:1:30: expected the end of the line, found 'x'"},
      {R"({"verb":"driver","action":"fault","text":"flip 'fap0' after 1 kestDmaNothing *"})",
       "file: faults:1:21: expected the name of a driver operation, found 'kestDmaNothing'"},
      {R"({"verb":"driver","action":"fault","text":"# fine\n\u0000"})",
       "file: faults: expected a text without NUL"},
  });
}

}  // namespace
}  // namespace Kest::Agent
