#include <gtest/gtest.h>

#include <ostream>

#include "platform/mox/Dir.h"
#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

struct ValidJsonRow {
  char const* name;
  char const* json;
  char const* statements;  // that hold the same
};

void PrintTo(ValidJsonRow const& row, std::ostream* out) {
  *out << row.name;
}

class ValidSliceJson : public testing::TestWithParam<ValidJsonRow> {};

TEST_P(ValidSliceJson, HoldsTheSameAsItsStatements) {
  {
    Slice json = parseSlice("slice.json", GetParam().json);
    json.handles.enterTree();
    Slice const statements = parseSlice("slice", GetParam().statements);
    EXPECT_EQ(entriesOf(*json.config), entriesOf(*statements.config));
    EXPECT_EQ(json.handles.paths(), statements.handles.paths());
  }
  EXPECT_EQ(Mox::root()->entities(), 0U) << "the entity tree outlived the slice's handles";
}

#define DEVICE "Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** "
#define PORT "Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** "

ValidJsonRow const validRows[] = {
    {"EmptyObject", "{}", ""},
    {"EmptyMembers",
     R"({"pciHam": [], "sliceId": "", "switchPort": {}, "nativeVlan": {}, "switchportMode": {},
         "device": {}, "deviceState": {}})",
     ""},
    {"SliceId", R"({"sliceId": "Linecard3"})", "sliceId 'Linecard3'"},
    {"Escapes", R"({"sliceId": "'\\\"\n\u0001\u0000#\/"})", R"(sliceId '\'\\"\n\x01\x00#/')"},
    {"LettersAbove7Bits", "{\"sliceId\": \"Z\\u00fcrich \342\200\224 \\ud83d\\ude00\"}",
     "sliceId 'Z\303\274rich \342\200\224 \360\237\230\200'"},
    {"ByteOrderMark", "\357\273\277{\"sliceId\": \"a\"}", "sliceId 'a'"},
    {"Handles", R"({"pciHam": ["/pci/b", "/pci/a", "/c"]})",
     "pciHam '/pci/b'\npciHam '/pci/a'\npciHam '/c'"},
    {"NativeVlans", R"({"nativeVlan": {"et1": 0, "et2": 4094, "et3/1": 7}})",
     "nativeVlan 'et1' 0\nnativeVlan 'et2' 4094\nnativeVlan 'et3/1' 7"},
    {"SwitchportModes",
     R"({"switchportMode": {"et1": "switchportModeAccess", "et2": "switchportModeDot1qTunnel"}})",
     "switchportMode 'et1' 'switchportModeAccess'\n"
     "switchportMode 'et2' 'switchportModeDot1qTunnel'"},
    {"StatesWithoutDevices",
     R"({"deviceState": {"fap0": "deviceStateUp", "fap1": "deviceStateDown"}})",
     "deviceState 'fap0' 'deviceStateUp'\ndeviceState 'fap1' 'deviceStateDown'"},
    {"Device",
     R"({"pciHam": ["/pci/a"],
         "device": {"fap0": {"pciHam": "/pci/a", "fapType": "fapTypeAradDual", "numFaps": 3,
                             "cpuTmSysPort": 1, "cpuArad": 4294967295}},
         "deviceState": {"fap0": "deviceStateUp"}})",
     "pciHam '/pci/a'\n"
     "device " DEVICE
     "{'devName': 'fap0', 'pciHam': EntityPtr('/pci/a', 'Fru::PciHam'), 'fapType': "
     "'fapTypeAradDual', 'numFaps': 3, 'cpuTmSysPort': 1, 'cpuArad': 4294967295})\n"
     "deviceState 'fap0' 'deviceStateUp'"},
    {"DeviceWithItsNameAndNoHandle",
     R"({"device": {"fap0": {"devName": "fap0", "pciHam": null}},
         "deviceState": {"fap0": "deviceStateDown"}})",
     "device " DEVICE "{'devName': 'fap0'})\ndeviceState 'fap0' 'deviceStateDown'"},
    {"HandlesAndStatesAfterTheirDevices",
     R"({"deviceState": {"fap0": "deviceStateUp"},
         "device": {"fap0": {"pciHam": "/a"}},
         "pciHam": ["/a"]})",
     "pciHam '/a'\n"
     "device " DEVICE "{'devName': 'fap0', 'pciHam': EntityPtr('/a', 'Fru::PciHam')})\n"
     "deviceState 'fap0' 'deviceStateUp'"},
    {"Port",
     R"({"switchPort": {"et1": {"destId": 7, "shadowIntfId": 4096, "trafficClass": 3,
                                "devName": "fap0", "fapNum": 1, "ctrl": true, "hwLag": false,
                                "macAddr": "00:1C:73:0a:0b:0c"}}})",
     "switchPort " PORT
     "{'ifName': 'et1', 'destId': 7, 'shadowIntfId': 4096, 'trafficClass': 3, 'devName': 'fap0', "
     "'fapNum': 1, 'ctrl': True, 'hwLag': False, 'macAddr': '00:1c:73:0a:0b:0c'})"},
    {"PortsOfOddNames", R"({"switchPort": {"et/~'\"": {}, "~1et~0": {"ifName": "~1et~0"}}})",
     "switchPort " PORT "{'ifName': 'et/~\\'\"'})\n"
     "switchPort " PORT "{'ifName': '~1et~0'})"},
    {"PortsOfOneNameInEveryCollection",
     R"({"switchportMode": {"et1": "switchportModeTrunk"}, "nativeVlan": {"et1": 1},
         "switchPort": {"et1": {}}})",
     "switchPort " PORT "{'ifName': 'et1'})\n"
     "nativeVlan 'et1' 1\nswitchportMode 'et1' 'switchportModeTrunk'"},
};

#undef DEVICE
#undef PORT

INSTANTIATE_TEST_SUITE_P(Rows, ValidSliceJson, testing::ValuesIn(validRows),
                         [](auto const& row) { return row.param.name; });

TEST(SliceJsonHandles, ThatOnlyTheFileBeforeDeclaredAreRefused) {
  Slice running = parseSlice("slice", "pciHam '/pci/a'");
  running.handles.enterTree();
  EXPECT_EQ(jsonRefusal(R"({"deviceState": {"fap0": "deviceStateUp"},
  "device": {"fap0": {"pciHam": "/pci/a"}}})"),
            "slice.json:2:23: /device/fap0/pciHam: expected a pciHam for '/pci/a' before it, found "
            "none\n"
            "    \"device\": {\"fap0\": {\"pciHam\": \"/pci/a\"}}}\n"
            "                        ^");
}

TEST(SliceJsonHandles, OfARunningSliceOutliveAFileThatIsRefused) {
  Slice running = parseSlice("slice.json", R"({"pciHam": ["/pci/a"]})");
  running.handles.enterTree();
  EXPECT_NE(jsonRefusal(R"({"pciHam": ["/pci/a", "/pci/b"], "bogus": 1})"), "");
  EXPECT_TRUE(Mox::entityAt("/pci/a"));
  EXPECT_FALSE(Mox::entityAt("/pci/b"));
}

TEST(SliceJson, IsToldByTheNameOfTheFile) {
  EXPECT_EQ(refusal("sliceId 'a'", "a.json/slice"), "");
  EXPECT_EQ(refusal("{}", "json"), refusal("{}", "slice").replace(0, 5, "json"));
  EXPECT_EQ(refusal("{}", ".json"), "");
}

TEST(SliceExamples, SmallIsTheSameAsJson) {
  Slice json = readSliceFile(KEST_EXAMPLES "/small.slice.json", SliceEnd::required);
  json.handles.enterTree();
  EXPECT_EQ(entriesOf(*json.config),
            entriesOf(*readSliceFile(KEST_EXAMPLES "/small.slice", SliceEnd::required).config));
}

}  // namespace
}  // namespace Kest::Agent
