#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

#include "agent/slice/SliceForm.h"
#include "platform/mox/Dir.h"
#include "platform/mox/RangeException.h"
#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

struct ValidRow {
  char const* name;
  std::string text;
  Entries entries;
};

void PrintTo(ValidRow const& row, std::ostream* out) {
  *out << row.name;
}

std::string const et1 =
    "switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': "
    "'et1', 'destId': 7, 'shadowIntfId': 4096, 'trafficClass': 3, 'devName': 'fap0', 'fapNum': 1, "
    "'ctrl': True, 'hwLag': True, 'macAddr': '00:1c:73:0a:0b:0c'})";
std::string const bareEt1 =
    "switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': "
    "'et1', 'destId': 0, 'shadowIntfId': 0, 'trafficClass': 0, 'devName': '', 'fapNum': 0, "
    "'ctrl': False, 'hwLag': False, 'macAddr': '00:00:00:00:00:00'})";
std::string const wholeFap0 =
    "device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', "
    "'pciHam': EntityPtr('/pci/0000:05:00.0', 'Fru::PciHam'), 'fapType': 'fapTypeAradDual', "
    "'numFaps': 3, 'cpuTmSysPort': 1, 'cpuEthSysPort': 2, 'cpuRawSysPort': 3, 'sflowPort': 4, "
    "'cpuAradSysPort': 5, 'cpuArad': 6, 'cpuAradBridge': 4294967295})";
std::string const bareFap0 =
    "device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', "
    "'pciHam': None, 'fapType': 'fapTypeUnknown', 'numFaps': 1, 'cpuTmSysPort': 0, "
    "'cpuEthSysPort': 0, 'cpuRawSysPort': 0, 'sflowPort': 0, 'cpuAradSysPort': 0, 'cpuArad': 0, "
    "'cpuAradBridge': 0})";
std::string const fap0Up = "deviceState 'fap0' 'deviceStateUp'";

class ValidSliceFile : public testing::TestWithParam<ValidRow> {};

TEST_P(ValidSliceFile, GivesItsEntries) {
  {
    Slice slice = parseSlice("slice", GetParam().text);
    EXPECT_EQ(Mox::root()->entities(), 0U) << "a file is in the tree before it is applied";
    slice.handles.enterTree();
    EXPECT_EQ(entriesOf(*slice.config), GetParam().entries);
  }
  EXPECT_EQ(Mox::root()->entities(), 0U) << "the entity tree outlived the slice's handles";
}

ValidRow const validFiles[] = {
    {"Empty", "", {}},
    {"BlankLinesAndComments", "\n  \n\t\n# nativeVlan 'et1' 10\n   # x\n#", {}},
    {"SliceId", "sliceId 'Linecard3'\n", {"sliceId 'Linecard3'"}},
    {"EmptySliceId", "sliceId ''", {}},
    {"EscapesInStrings",
     R"(sliceId '\'\\\n\x01#')"
     "# comment",
     {R"(sliceId '\'\\\n\x01#')"}},
    {"LettersAbove7Bits", "sliceId 'Z\303\274rich'", {"sliceId 'Z\303\274rich'"}},
    {"Handle", "pciHam '/pci/a'\npciHam '/pci/b'\npciHam '/c'", {}},
    {"NativeVlans",
     "nativeVlan 'et1' 0\nnativeVlan 'et10' 4094\nnativeVlan 'et2' 0007",
     {"nativeVlan 'et1' 0", "nativeVlan 'et2' 7", "nativeVlan 'et10' 4094"}},
    {"SwitchportModes",
     "switchportMode 'et1' 'switchportModeAccess'\n"
     "switchportMode 'et2' 'switchportModeTrunk'\n"
     "switchportMode 'Ethernet3' 'switchportModeDot1qTunnel'\n"
     "switchportMode 'Vnet4' 'switchportModeTrunk'\n",
     {"switchportMode 'Ethernet3' 'switchportModeDot1qTunnel'",
      "switchportMode 'Vnet4' 'switchportModeTrunk'", "switchportMode 'et1' 'switchportModeAccess'",
      "switchportMode 'et2' 'switchportModeTrunk'"}},
    {"StatesWithoutDevices",
     "deviceState 'fap0' 'deviceStateUp'\ndeviceState 'fap1' 'deviceStateDown'",
     {"deviceState 'fap0' 'deviceStateUp'", "deviceState 'fap1' 'deviceStateDown'"}},
    {"Device", "pciHam '/pci/0000:05:00.0'\n" + wholeFap0 + "\n" + fap0Up, {wholeFap0, fap0Up}},
    {"DeviceWithItsNameAlone", fap0Up + "\n" + deviceText("'devName': 'fap0'"), {bareFap0, fap0Up}},
    {"DeviceWithoutHandle",
     fap0Up + "\n" + deviceText("'pciHam': None, 'devName': 'fap0'"),
     {bareFap0, fap0Up}},
    {"Port", et1, {et1}},
    {"PortWithItsNameAlone", portText("'ifName': 'et1'"), {bareEt1}},
    {"FieldsInAnyOrder",
     portText("'macAddr': '00:1C:73:0A:0B:0C', 'hwLag': True, 'ifName': 'et1', 'ctrl': True, "
              "'fapNum': 1, 'devName': 'fap0', 'trafficClass': 3, 'destId': 7, 'shadowIntfId': "
              "4096"),
     {et1}},
    {"FieldGivenTwiceCountsAsTheLast",
     portText("'ifName': 'et9', 'ctrl': True, 'ifName': 'et1', 'ctrl': False"),
     {bareEt1}},
    {"CarriageReturns",
     "# c\r\nsliceId 'a' # b\r\n\r\nnativeVlan 'et1' 1\r\n" + portText("'ifName': 'et1'") + "\r\n",
     {"sliceId 'a'", bareEt1, "nativeVlan 'et1' 1"}},
    {"TabsAndBlanksAnywhere",
     "\t nativeVlan\t'et1'\t 1 \t# x\n switchPort\tValue\t( 'Hardware::Kest::Slice::"
     "KestSliceDmaConfig::SwitchPort'\t,** {\t'ifName' :'et1' , 'ctrl':False } )\t\n",
     {bareEt1, "nativeVlan 'et1' 1"}},
    {"NoBlanks",
     "nativeVlan'et1'1#x\ndeviceState'fap0''deviceStateUp'",
     {"nativeVlan 'et1' 1", fap0Up}},
    {"CommentAfterARecord", et1 + "# x", {et1}},
    {"PortsOfOneNameInEveryCollection",
     "switchportMode 'et1' 'switchportModeTrunk'\nnativeVlan 'et1' 1\n" + et1,
     {et1, "nativeVlan 'et1' 1", "switchportMode 'et1' 'switchportModeTrunk'"}},
};

INSTANTIATE_TEST_SUITE_P(Rows, ValidSliceFile, testing::ValuesIn(validFiles),
                         [](auto const& row) { return row.param.name; });

Mox::Ptr<Mox::Entity> at(char const* path) {
  return Mox::entityAt(path);
}

/// As it is once it is applied.
Slice running(std::string const& text) {
  Slice slice = parseSlice("slice", text);
  slice.handles.enterTree();
  return slice;
}

std::string const fap0OfHandle =
    fap0Up + "\n" + deviceText("'devName': 'fap0', 'pciHam': EntityPtr('/pci/a', 'Fru::PciHam')");

TEST(SliceHandles, StandAtTheirPathsAsLongAsTheSlice) {
  {
    Slice const slice = running("pciHam '/pci/a'\n" + fap0OfHandle);
    ASSERT_TRUE(at("/pci/a"));
    EXPECT_EQ(slice.config->device("fap0").pciHam().ptr(), at("/pci/a").ptr());
    EXPECT_EQ(at("/pci/a")->fullName(), "/pci/a");
  }
  EXPECT_FALSE(at("/pci"));
}

/// Whoever reads a file that takes long is in nobody's way.
TEST(SliceHandles, OfAFileThatIsBeingReadStayOutOfTheTree) {
  Slice first = parseSlice("first", "pciHam '/pci/a'\n" + fap0OfHandle);
  EXPECT_FALSE(at("/pci"));
  Slice const second = running("pciHam '/pci'");
  EXPECT_TRUE(at("/pci"));
  EXPECT_THROW(first.handles.enterTree(), Mox::RangeException);
}

TEST(SliceHandles, AreThoseThatAnotherFileHasBroughtMeanwhile) {
  auto const reader = sliceReader("slice", SliceForm::statements, SliceEnd::optional);
  reader->take("pciHam '/pci/a'\n");
  Slice const other = running("pciHam '/pci/a'");
  reader->take(fap0OfHandle);
  EXPECT_FALSE(reader->goOn());
  Slice slice = reader->slice();
  slice.handles.enterTree();
  EXPECT_EQ(slice.config->device("fap0").pciHam().ptr(), at("/pci/a").ptr());
}

TEST(SliceHandles, KeepTheirIdentityWhenTheFileIsReadAgain) {
  Slice first = running("pciHam '/pci/a'\npciHam '/pci/b'\npciHam '/other/c'");
  Mox::Ptr<Mox::Entity> const a = at("/pci/a");
  {
    Slice second = running("pciHam '/pci/a'\npciHam '/pci/d'");
    EXPECT_EQ(at("/pci/a").ptr(), a.ptr());
    second.handles.succeed(first.handles);
    first = std::move(second);
  }
  EXPECT_EQ(at("/pci/a").ptr(), a.ptr());
  EXPECT_TRUE(at("/pci/d"));
  EXPECT_FALSE(at("/pci/b"));
  EXPECT_FALSE(at("/other"));
  first = parseSlice("slice", "");
  EXPECT_FALSE(at("/pci"));
}

TEST(SliceHandles, OfARunningSliceOutliveAFileThatIsRefused) {
  Slice const slice = running("pciHam '/pci/a'");
  EXPECT_NE(refusal("pciHam '/pci/a'\npciHam '/pci/b'\n" + fap0OfHandle + "bogus"), "");
  EXPECT_TRUE(at("/pci/a"));
  EXPECT_FALSE(at("/pci/b"));
}

TEST(SliceHandles, ThatOnlyTheFileBeforeDeclaredAreRefusedAsAtTheStart) {
  Slice const slice = running("pciHam '/pci/a'");
  EXPECT_EQ(refusal("pciHam '/pci/b'\n"
                    "device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** "
                    "{'devName': 'fap0', 'pciHam': EntityPtr('/pci/a', 'Fru::PciHam')})\n"
                    "pciHam '/pci/a'"),
            "slice:2:8: expected a pciHam for '/pci/a' before it, found none\n"
            "  device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': "
            "'fap0', 'pciHam': EntityPtr('/pci/a', 'Fru::PciHam')})\n"
            "         ^");
}

TEST(SliceHandles, LeaveWhatOthersPutInTheTree) {
  Mox::Ptr<Mox::Dir> const pci = Mox::dirAt("/pci");
  pci->entityIs(Mox::Ptr<Mox::Entity>(new Fru::PciHam("a")));
  running("pciHam '/pci/a'\npciHam '/pci/b'");
  EXPECT_TRUE(at("/pci/a"));
  EXPECT_FALSE(at("/pci/b"));
  pci->entityDel("a");
  Mox::root()->entityDel("pci");
}

TEST(SliceHandles, ThatOthersTookOutOfTheTreeStayOut) {
  {
    Slice const slice = running("pciHam '/pci/a'\npciHam '/pci/b'");
    Mox::dirAt("/pci")->entityDel("a");
    EXPECT_TRUE(at("/pci/b"));
  }
  EXPECT_FALSE(at("/pci"));
}

TEST(SliceHandles, MayStandAsDeepAsAPathMayBe) {
  std::string directory;
  for (std::size_t step = 1; step < PciHandles::deepestPath; ++step) directory += "/abcd";
  {
    Slice const slice =
        running("pciHam '" + directory + "/5'\npciHam '" + directory + "/6'\npciHam '/abcd/7'");
    EXPECT_EQ(at((directory + "/6").c_str())->fullName(), directory + "/6");
    EXPECT_EQ(slice.handles.paths().size(), 3U);
  }
  EXPECT_EQ(Mox::root()->entities(), 0U);
}

std::size_t countIf(Config const& config, auto const& holds) {
  std::size_t count = 0;
  for (auto it = config.switchPortIteratorConst(); it; ++it) count += holds(it.value()) ? 1 : 0;
  return count;
}

TEST(SliceExamples, SmallIsOneChipWithFourPorts) {
  Slice const slice = readSliceFile(KEST_EXAMPLES "/small.slice");
  EXPECT_EQ(slice.config->sliceId(), "Linecard1");
  EXPECT_EQ(keysOf<Config::Devices>(*slice.config), (std::vector<Mox::String8>{"fap0"}));
  EXPECT_EQ(keysOf<Config::SwitchPorts>(*slice.config),
            (std::vector<Mox::String8>{"et1", "et2", "et3", "et4"}));
}

TEST(SliceExamples, FullIsThreeChipsWithTwelvePortsEach) {
  Slice const slice = readSliceFile(KEST_EXAMPLES "/full.slice");
  Config const& config = *slice.config;
  EXPECT_EQ(config.sliceId(), "Linecard3");
  EXPECT_EQ(keysOf<Config::Devices>(config),
            (std::vector<Mox::String8>{"fap3/0", "fap3/1", "fap3/2"}));
  EXPECT_EQ(keysOf<Config::DeviceStates>(config), keysOf<Config::Devices>(config));
  EXPECT_EQ(countIf(config, [](auto const&) { return true; }), 36U);
  for (Mox::String8 const& device : keysOf<Config::Devices>(config)) {
    EXPECT_EQ(countIf(config, [&](auto const& port) { return port.devName() == device; }), 12U);
  }
  EXPECT_EQ(countIf(config, [](auto const& port) { return port.shadowIntfId() != 4096; }), 1U);
  EXPECT_EQ(countIf(config, [](auto const& port) { return port.hwLag(); }), 1U);
  EXPECT_EQ(keysOf<Config::NativeVlans>(config), keysOf<Config::SwitchportModes>(config));
}

}  // namespace
}  // namespace Kest::Agent
