#include "agent/slice/SliceWriter.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <sstream>

#include "agent/slice/Comparison.h"
#include "platform/mox/Dir.h"
#include "platform/mox/RangeException.h"
#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

using Bridging::SwitchportMode;
using Hardware::Kest::FapType;
using Hardware::Kest::Slice::DeviceState;
using Mox::String8;

Mox::Ptr<Config> emptyConfig() {
  return Mox::Ptr<Config>(new Config("config"));
}

/// What must be done to the one to make the other of it.
Entries differences(Config const& one, Config const& other) {
  Entries texts;
  for (Change const& step : changesBetween(one, other).steps) texts.push_back(step.text);
  return texts;
}

Slice sample() {
  Slice slice = parseSlice("sample.json",
                           R"({"pciHam": ["/pci/10", "/pci/9", "/spare"], "sliceId": "it's",
          "switchPort": {"et10": {"devName": "fap0", "ctrl": true}, "et9": {"destId": 3}},
          "switchportMode": {"et9": "switchportModeTrunk"}, "nativeVlan": {"et9": 7, "et10": 8},
          "deviceState": {"fap0": "deviceStateUp", "fap1": "deviceStateDown"},
          "device": {"fap1": {"numFaps": 2}, "fap0": {"pciHam": "/pci/10"}}})");
  slice.handles.enterTree();
  return slice;
}

TEST(SliceText, HoldsHandlesThenDevicesThenPortsInNaturalOrder) {
  Slice const slice = sample();
  EXPECT_EQ(
      sliceText(*slice.config, slice.handles.paths()),
      "pciHam '/pci/9'\n"
      "pciHam '/pci/10'\n"
      "pciHam '/spare'\n"
      "sliceId 'it\\'s'\n" +
          deviceText("'devName': 'fap0', 'pciHam': EntityPtr('/pci/10', 'Fru::PciHam'), 'fapType': "
                     "'fapTypeUnknown', 'numFaps': 1, 'cpuTmSysPort': 0, 'cpuEthSysPort': 0, "
                     "'cpuRawSysPort': 0, 'sflowPort': 0, 'cpuAradSysPort': 0, 'cpuArad': 0, "
                     "'cpuAradBridge': 0") +
          deviceText(
              "'devName': 'fap1', 'pciHam': None, 'fapType': 'fapTypeUnknown', 'numFaps': 2, "
              "'cpuTmSysPort': 0, 'cpuEthSysPort': 0, 'cpuRawSysPort': 0, 'sflowPort': 0, "
              "'cpuAradSysPort': 0, 'cpuArad': 0, 'cpuAradBridge': 0") +
          "deviceState 'fap0' 'deviceStateUp'\n"
          "deviceState 'fap1' 'deviceStateDown'\n" +
          portText("'ifName': 'et9', 'destId': 3, 'shadowIntfId': 0, 'trafficClass': 0, 'devName': "
                   "'', 'fapNum': 0, 'ctrl': False, 'hwLag': False, 'macAddr': "
                   "'00:00:00:00:00:00'") +
          portText(
              "'ifName': 'et10', 'destId': 0, 'shadowIntfId': 0, 'trafficClass': 0, 'devName': "
              "'fap0', 'fapNum': 0, 'ctrl': True, 'hwLag': False, 'macAddr': "
              "'00:00:00:00:00:00'") +
          "nativeVlan 'et9' 7\n"
          "nativeVlan 'et10' 8\n"
          "switchportMode 'et9' 'switchportModeTrunk'\n"
          "end\n");
}

TEST(SliceJson, HoldsOneEntryALineWithoutTheRecordsKeys) {
  Slice const slice = sample();
  EXPECT_EQ(sliceJson(*slice.config, slice.handles.paths()), R"({
  "pciHam": ["/pci/9","/pci/10","/spare"],
  "sliceId": "it's",
  "device": {
    "fap0": {"pciHam":"/pci/10","fapType":"fapTypeUnknown","numFaps":1,"cpuTmSysPort":0,"cpuEthSysPort":0,"cpuRawSysPort":0,"sflowPort":0,"cpuAradSysPort":0,"cpuArad":0,"cpuAradBridge":0},
    "fap1": {"pciHam":null,"fapType":"fapTypeUnknown","numFaps":2,"cpuTmSysPort":0,"cpuEthSysPort":0,"cpuRawSysPort":0,"sflowPort":0,"cpuAradSysPort":0,"cpuArad":0,"cpuAradBridge":0}
  },
  "deviceState": {
    "fap0": "deviceStateUp",
    "fap1": "deviceStateDown"
  },
  "switchPort": {
    "et9": {"destId":3,"shadowIntfId":0,"trafficClass":0,"devName":"","fapNum":0,"ctrl":false,"hwLag":false,"macAddr":"00:00:00:00:00:00"},
    "et10": {"destId":0,"shadowIntfId":0,"trafficClass":0,"devName":"fap0","fapNum":0,"ctrl":true,"hwLag":false,"macAddr":"00:00:00:00:00:00"}
  },
  "nativeVlan": {
    "et9": 7,
    "et10": 8
  },
  "switchportMode": {
    "et9": "switchportModeTrunk"
  },
  "end": true
}
)");
}

TEST(SliceWriters, LeaveOutCollectionsThatAreEmpty) {
  EXPECT_EQ(sliceText(*emptyConfig()), "sliceId ''\nend\n");
  EXPECT_EQ(sliceJson(*emptyConfig()), "{\n  \"sliceId\": \"\",\n  \"end\": true\n}\n");
}

/// Nobody has to pass the handles that the devices refer to.
TEST(SliceWriters, DeclareTheHandlesOfDevicesOnce) {
  Slice const slice = sample();
  std::string const paths = "pciHam '/pci/10'\nsliceId ";
  EXPECT_EQ(sliceText(*slice.config).substr(0, paths.size()), paths);
  EXPECT_EQ(sliceText(*slice.config, {"/pci/10"}).substr(0, paths.size()), paths);
}

TEST(SliceWriters, GiveTheSmallExample) {
  Slice small = readSliceFile(KEST_EXAMPLES "/small.slice");
  small.handles.enterTree();
  std::ostringstream json;
  json << std::ifstream(KEST_EXAMPLES "/small.slice.json").rdbuf();
  EXPECT_EQ(sliceJson(*small.config), json.str());
}

/// What another writer put there is shown as it is; a file may not hold it.
TEST(SliceWriters, WriteFaithfullyWhatAFileMayNotHold) {
  Mox::Ptr<Config> const config = emptyConfig();
  config->nativeVlanIs("Management1", 5000);
  EXPECT_EQ(sliceText(*config), "sliceId ''\nnativeVlan 'Management1' 5000\nend\n");
  EXPECT_EQ(refusal(sliceText(*config)),
            "slice:2:12: expected an interface name with 'et' in it, found 'Management1'\n"
            "  nativeVlan 'Management1' 5000\n"
            "             ^");
}

struct NoUtf8Row {
  char const* name;
  void (*put)(Config& config);
  char const* message;
};

void PrintTo(NoUtf8Row const& row, std::ostream* out) {
  *out << row.name;
}

class NoUtf8 : public testing::TestWithParam<NoUtf8Row> {};

TEST_P(NoUtf8, IsRefusedByJsonAndWrittenAsStatements) {
  Mox::Ptr<Config> const config = emptyConfig();
  GetParam().put(*config);
  std::string message;
  try {
    sliceJson(*config);
  } catch (Mox::RangeException const& refused) {
    message = refused.what();
  }
  EXPECT_EQ(message, std::string(GetParam().message) +
                         " holds bytes that are no UTF-8, which JSON cannot hold; statements can");
  EXPECT_EQ(differences(*config, *parseSlice("slice", sliceText(*config)).config), Entries());
}

NoUtf8Row const noUtf8Rows[] = {
    {"SliceId", [](Config& config) { config.sliceIdIs("a\xff'"); }, R"(sliceId 'a\xff\'')"},
    {"Key", [](Config& config) { config.nativeVlanIs("et\xc3", 1); }, R"(nativeVlan 'et\xc3')"},
    {"Field",
     [](Config& config) {
       Config::SwitchPort port;
       port.ifNameIs("et\xc3\xbc");
       port.devNameIs("\x80");
       config.switchPortIs(port);
     },
     R"(switchPort 'et\xc3\xbc')"},
};

INSTANTIATE_TEST_SUITE_P(Rows, NoUtf8, testing::ValuesIn(noUtf8Rows),
                         [](auto const& row) { return row.param.name; });

TEST(SliceJson, RefusesAHandleThatIsNoUtf8) {
  try {
    sliceJson(*emptyConfig(), {"/pci/\xfe"});
    FAIL() << "not refused";
  } catch (Mox::RangeException const& refused) {
    EXPECT_STREQ(refused.what(),
                 R"(pciHam '/pci/\xfe' holds bytes that are no UTF-8, which JSON cannot hold; )"
                 "statements can");
  }
}

/// Makes configurations that a slice file may hold.
class ConfigsOfAnyNames {
 public:
  /// @param letters that names are made of
  ConfigsOfAnyNames(std::uint64_t seed, std::vector<std::string> letters)
      : random_(seed), letters_(std::move(letters)) {
    for (int i = 0; i < 5; ++i) handles_.declare(String8("/pci/" + name()));
    handles_.enterTree();
  }

  Mox::Ptr<Config> config() {
    Mox::Ptr<Config> config = emptyConfig();
    config->sliceIdIs(String8(name()));
    while (!one(3)) addDevice(*config);
    while (!one(5)) addPort(*config);
    while (!one(5)) config->nativeVlanIs(portName(), static_cast<std::uint16_t>(below(4095)));
    while (!one(5)) config->switchportModeIs(portName(), static_cast<SwitchportMode>(below(3)));
    return config;
  }

 private:
  std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }
  bool one(std::uint32_t of) { return below(of) == 0; }
  std::uint32_t number() { return static_cast<std::uint32_t>(random_()); }

  /// Never a slash alone: it would be no path of a handle.
  std::string name() {
    std::string text = "x";
    while (!one(6)) text += letters_[below(static_cast<std::uint32_t>(letters_.size()))];
    return text;
  }
  /// Without NUL, which no port may have in its name.
  String8 portName() {
    std::string text = name() + "et" + name();
    std::erase(text, '\0');
    return String8(text);
  }

  void addDevice(Config& config) {
    std::vector<String8> const paths = handles_.paths();
    Config::Device device;
    device.devNameIs(String8(name()));
    if (!one(4)) {
      device.pciHamIs(Mox::ptrCast<Fru::PciHam const>(
          Mox::entityAt(paths[below(static_cast<std::uint32_t>(paths.size()))])));
    }
    device.fapTypeIs(static_cast<FapType>(below(3)));
    device.numFapsIs(1 + below(3));
    device.cpuTmSysPortIs(number());
    device.cpuAradBridgeIs(number());
    config.deviceIs(device);
    config.deviceStateIs(device.devName(),
                         one(2) ? DeviceState::deviceStateUp_ : DeviceState::deviceStateDown_);
  }

  void addPort(Config& config) {
    Config::SwitchPort port;
    port.ifNameIs(portName());
    port.destIdIs(number());
    port.devNameIs(String8(name()));
    port.ctrlIs(one(2));
    port.hwLagIs(one(2));
    config.switchPortIs(port);
  }

  std::mt19937_64 random_;
  std::vector<std::string> letters_;
  PciHandles handles_;
};

std::vector<std::string> allBytesButSlash() {
  std::vector<std::string> all;
  for (int byte = 0; byte < 256; ++byte) {
    if (byte != '/') all.emplace_back(1, static_cast<char>(byte));
  }
  return all;
}

TEST(SliceWriterProperty, StatementsReadBackToNoChangeWhateverBytesNamesHave) {
  ConfigsOfAnyNames random(20240611, allBytesButSlash());
  for (int round = 0; round < 100; ++round) {
    SCOPED_TRACE(round);
    Mox::Ptr<Config> const config = random.config();
    std::string const text = sliceText(*config);
    Slice const read = parseSlice("slice", text);
    ASSERT_EQ(differences(*config, *read.config), Entries()) << text;
    ASSERT_EQ(sliceText(*read.config), text);
  }
}

TEST(SliceWriterProperty, JsonReadsBackToNoChangeAndToTheSameStatements) {
  ConfigsOfAnyNames random(
      20240612, {"a", "e", "t", "0", "1", "9", "~", "'", "\"", "\\", "\n", "\x01", "\x7f", " ",
                 std::string(1, '\0'), "\303\274", "\342\200\224", "\360\237\230\200"});
  for (int round = 0; round < 100; ++round) {
    SCOPED_TRACE(round);
    Mox::Ptr<Config> const config = random.config();
    std::string const json = sliceJson(*config);
    Slice const read = parseSlice("slice.json", json);
    ASSERT_EQ(differences(*config, *read.config), Entries()) << json;
    ASSERT_EQ(sliceText(*read.config), sliceText(*config));
    ASSERT_EQ(sliceJson(*parseSlice("slice", sliceText(*config)).config), json);
  }
}

}  // namespace
}  // namespace Kest::Agent
