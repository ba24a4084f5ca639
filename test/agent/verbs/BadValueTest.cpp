#include "test/agent/support/RefusedRequests.h"

namespace Kest::Agent {
namespace {

/// Which texts and JSON are values of a type is told elsewhere; here, that every request asks, and
/// that the rules are asked too.
class BadValue : public RefusedRequests {
 protected:
  static Refusal set(std::string const& path, std::string const& value, std::string const& why) {
    return {R"({"verb":"set","path":"config/)" + path + R"(","value":)" + value + "}",
            "value: " + why};
  }
  static Refusal typed(std::string const& path, std::string const& text, std::string const& why) {
    return {Json{{"verb", "set"}, {"path", "config/" + path}, {"text", text}}.dump(),
            "value: " + why};
  }
};

TEST_F(BadValue, IsNoneOfItsType) {
  std::string const record = "Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort";
  expectRefused({
      set("sliceId", "7", "expected a string, found 7"),
      typed("sliceId", "'a' b", "junk at column 3 deserializing 'a' b"),
      set("nativeVlan/et3/1", "null", "expected a whole number from 0, found null"),
      set("nativeVlan/et3/1", "65536", "expected a number from 0 to 65535, found a larger one"),
      set("nativeVlan/et3/1", "18446744073709551616",
          "expected a whole number from 0, found 1.8446744073709552e+19"),
      typed("nativeVlan/et3/1", "0x10", "junk at column 1 deserializing 0x10"),
      typed("deviceState/fap0", "9",
            "expected 'deviceStateUnknown', 'deviceStateUp' or 'deviceStateDown', found '9'"),
      set("switchPort/et3/1", R"({"destID":1})", "SwitchPort has no such attribute: destID"),
      set("switchPort/et3/1", R"({"ctrl":1})", "ctrl: expected true or false, found 1"),
      set("switchPort/et3/1:destId", R"("x")", R"(expected a whole number from 0, found "x")"),
      set("switchPort/et3/9:destId", "5", "expected an object of the fields, found 5"),
      typed("switchPort/et3/1", R"({"destId":1e400})",
            "expected a JSON object; number overflow parsing '1e400'"),
      typed("switchPort/et3/1", "Value('Device', ** {})", "expected '" + record + "', found 'D'"),
      set("device/fap0", R"({"pciHam":"/pci/none"})", "pciHam: there is no entity at '/pci/none'"),
      set("device/fap0", R"({"pciHam":"/pci"})",
          "pciHam: expected a 'Fru::PciHam' at '/pci', found a 'Mox::Dir'"),
      {R"({"verb":"set","path":"sm/mode","text":"poling"})",
       "value: expected 'smModeInitial', 'smModeStandby' or 'smModePolling', found 'poling'"},
      {R"({"verb":"set","path":"sm/stateTimer","value":"/clock"})",
       "value: there is no entity at '/clock'"},
      {R"({"verb":"mode","mode":3})",
       "value: expected 'smModeInitial', 'smModeStandby' or 'smModePolling', found '3'"},
      {R"({"verb":"mode","mode":-1})", "value: expected a string, found -1"},
      {R"({"verb":"mode","mode":null})", "value: expected a string, found null"},
      {R"({"verb":"trace","setting":"X/9-0"})",
       "value: trace setting 'X/9-0': expected a level, 9 to 9 at column 4, found '0'"},
  });
}

TEST_F(BadValue, IsForbiddenByARule) {
  std::string const vlan = "expected a VLAN id from 1 to 4094, or 0 for none, found ";
  std::string const port = "expected an interface name with 'et' in it, found ";
  std::string const noNul = "expected an interface name without NUL, found ";
  std::string const state = "expected 'deviceStateUp' or 'deviceStateDown', found ";
  std::string const faps = "Device::numFaps < 1 or > 3 not allowed";
  expectRefused({
      set("nativeVlan/et3/1", "4095", vlan + "4095"),
      typed("nativeVlan/et3/1", "65535", vlan + "65535"),
      set("nativeVlan/", "20", port + "''"),
      set("nativeVlan/ET3/1", "20", port + "'ET3/1'"),
      set("nativeVlan/et3/1\\u0000", "20", noNul + R"('et3/1\x00')"),
      set("switchportMode/x", R"("switchportModeTrunk")", port + "'x'"),
      set("switchPort/x9", R"({"destId":1})", port + "'x9'"),
      set("switchPort/et\\u00001", R"({"destId":1})", noNul + R"('et\x001')"),
      set("deviceState/fap0", R"("deviceStateUnknown")", state + "'deviceStateUnknown'"),
      typed("deviceState/fap0", "unknown", state + "'deviceStateUnknown'"),
      set("deviceState/", R"("deviceStateUp")", "expected a device name, found an empty one"),
      set("device/", R"({"numFaps":1})", "expected a device name, found an empty one"),
      set("device/fap0", R"({"numFaps":4})", faps),
      set("device/fap0:numFaps", "9", faps),
  });
}

/// The tests of the file readers say which files are refused, and why.
TEST_F(BadValue, IsReportedWholeWhereAFileHoldsIt) {
  std::string const report =
      "file: x.slice:1:18: expected a VLAN id from 1 to 4094, or 0 for none, found 4095\n"
      "  nativeVlan 'et1' 4095\n"
      "                   ^";
  expectRefused({
      {R"({"verb":"apply","file":"x.slice","content":"nativeVlan 'et1' 4095"})", report},
      {R"({"verb":"diff","file":"x.slice","content":"nativeVlan 'et1' 4095"})", report},
      {R"({"verb":"apply","file":"x.json","content":"{\"sliceId\": 7}"})",
       "file: x.json:1:2: /sliceId: expected a string, found 7\n  {\"sliceId\": 7}\n   ^"},
      {R"({"verb":"diff","file":"x.json","content":"{"})",
       "file: x.json:1:2: no JSON: unexpected end of input; expected string literal\n  {\n   ^"},
      {R"({"verb":"apply","file":"","content":"junk"})",
       "file: :1:1: expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, "
       "device, deviceState, end, found 'junk'\n  junk\n  ^"},
      {R"({"verb":"driver","action":"fault","text":"fail kestDmaIfadd * 5 always\nflip 'fap7'"})",
       "file: faults:2:6: expected the name of a device that there is, found 'fap7'"},
      {R"({"verb":"driver","action":"fault","text":"# fine\n\u0000"})",
       "file: faults: expected a text without NUL"},
  });
}

}  // namespace
}  // namespace Kest::Agent
