#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "test/model/RecordSamples.h"
#include "test/support/Refusal.h"

namespace Hardware::Kest::Slice {
namespace {

using Test::refusal;

// What is read.

TEST(RecordParse, AFieldThatIsNotNamedKeepsItsDefault) {
  ConfigSwitchPort port;
  port.fapNumIs(7);
  port.ctrlIs(true);
  EXPECT_EQ(read<ConfigSwitchPort>(around<ConfigSwitchPort>("'fapNum': 7, 'ctrl': True")), port);
  ConfigDevice device;
  device.devNameIs("fap0");
  EXPECT_EQ(read<ConfigDevice>(around<ConfigDevice>("'devName': 'fap0'")), device);
}

TEST(RecordParse, AnEmptyListOfFieldsSetsNone) {
  EXPECT_EQ(read<ConfigSwitchPort>(around<ConfigSwitchPort>("")), ConfigSwitchPort());
  EXPECT_EQ(read<ConfigDevice>(around<ConfigDevice>("")), ConfigDevice());
  EXPECT_EQ(read<StatusSwitchPort>(around<StatusSwitchPort>("")), StatusSwitchPort());
  EXPECT_EQ(read<StatusDevice>(around<StatusDevice>(" ")), StatusDevice());
}

TEST(RecordParse, FieldsComeInAnyOrderAndTheLastOfANameCounts) {
  StatusDevice registered;
  registered.devNameIs("fap0");
  registered.registeredIs(true);
  for (char const* fields : {
           "'devName': 'fap0', 'registered': True",
           "'registered': True, 'devName': 'fap0'",
           "'devName': 'fap1', 'registered': False, 'registered': True, "
           "'devName': 'fap0'",
       }) {
    EXPECT_EQ(read<StatusDevice>(around<StatusDevice>(fields)), registered) << fields;
  }
}

TEST(RecordParse, ARepeatedNumberOfFapsIsJudgedByItsLastValue) {
  EXPECT_EQ(read<ConfigDevice>(around<ConfigDevice>("'numFaps': 4, 'numFaps': 2")).numFaps(), 2U);
  EXPECT_EQ(refusal([] { read<ConfigDevice>(around<ConfigDevice>("'numFaps': 2, 'numFaps': 4")); }),
            "Device::numFaps < 1 or > 3 not allowed");
}

TEST(RecordParse, OneToThreeFapsPass) {
  for (unsigned const number : {1U, 2U, 3U}) {
    std::string const field = "'numFaps': " + std::to_string(number);
    EXPECT_EQ(read<ConfigDevice>(around<ConfigDevice>(field)).numFaps(), number);
  }
}

TEST(RecordParse, BlanksAreToleratedBetweenTheTokens) {
  StatusSwitchPort created;
  created.ifNameIs(" et 3 ");
  created.createdIs(true);
  constexpr char const* type = "'Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort'";
  std::string const wide = std::string(" \t\n\r Value \n( ") + type +
                           " \t, \n** \r{ 'ifName' : \t ' et 3 ' , \n 'created'\t:  True \t} ) \n";
  std::string const narrow =
      std::string("Value(") + type + ",**{'ifName':' et 3 ','created':True})";
  EXPECT_EQ(read<StatusSwitchPort>(wide), created);
  EXPECT_EQ(read<StatusSwitchPort>(narrow), created);
}

TEST(RecordParse, ReadingInASequenceStopsAfterTheValue) {
  std::string const one = around<StatusDevice>("'devName': 'fap0'");
  std::string const other = around<StatusDevice>("'devName': 'fap1'");
  Mox::String8 const both(one + " " + other);
  Mox::String8::IteratorConst it = both.begin();
  EXPECT_EQ(StatusDevice(it, both.end()).devName(), "fap0");
  EXPECT_EQ(it.pos(), one.size() + 1);  // the blanks after a value belong to it
  EXPECT_EQ(StatusDevice(it, both.end()).devName(), "fap1");
  EXPECT_EQ(it, both.end());
}

TEST(RecordParse, ARefusedDeviceLetsGoOfItsHandle) {
  Handle const& handle = handles()[1];
  std::uint32_t const before = handle->references();
  std::string const text =
      around<ConfigDevice>("'pciHam': EntityPtr('/pci/0000:05:00.0', 'Fru::PciHam'), 'numFaps': 0");
  EXPECT_EQ(refusal([&] { read<ConfigDevice>(text); }), "Device::numFaps < 1 or > 3 not allowed");
  EXPECT_EQ(handle->references(), before);
}

// What is refused.

struct Refused {
  std::function<void(std::string const&)> read;
  std::string text;
  std::string message;
};

template <class Record>
Refused fields(char const* list, char const* message) {
  return {[](std::string const& text) { read<Record>(text); }, around<Record>(list), message};
}

template <class Record>
Refused whole(std::string text, std::string message) {
  return {[](std::string const& t) { read<Record>(t); }, std::move(text), std::move(message)};
}

void expectRefused(std::vector<Refused> const& all) {
  for (Refused const& one : all) {
    EXPECT_EQ(refusal([&] { one.read(one.text); }), one.message) << one.text;
  }
}

TEST(RecordRefusal, OfAHeadThatIsNotTheRecords) {
  std::string const good = around<StatusDevice>("");
  expectRefused({
      whole<StatusDevice>("", "expected Value, found the end of the text"),
      whole<StatusDevice>("value" + good.substr(5), "expected Value, found 'v'"),
      whole<StatusDevice>("Value'" + good.substr(6), "expected (, found '''"),
      whole<StatusDevice>(around<ConfigDevice>(""),
                          "expected 'Hardware::Kest::Slice::KestSliceDmaStatus::Device', "
                          "found 'C'"),
      whole<StatusDevice>(around<StatusSwitchPort>(""),
                          "expected 'Hardware::Kest::Slice::KestSliceDmaStatus::Device', "
                          "found 'S'"),
      whole<StatusDevice>(std::string(good).replace(good.find(','), 1, ";"),
                          "expected ,, found ';'"),
      whole<StatusDevice>(std::string(good).replace(good.find("**"), 2, "*"),
                          "expected **, found ' '"),
      whole<StatusDevice>(std::string(good).replace(good.find('{'), 1, "["),
                          "expected {, found '['"),
  });
}

TEST(RecordRefusal, OfATextThatEndsInside) {
  expectRefused({
      whole<ConfigSwitchPort>(configSwitchPortHead, "premature end of value type SwitchPort"),
      whole<ConfigDevice>(configDeviceHead, "premature end of value type Device"),
      whole<StatusSwitchPort>(statusSwitchPortHead, "premature end of value type SwitchPort"),
      whole<StatusDevice>(std::string(statusDeviceHead) + "'registered': True \t\n",
                          "premature end of value type Device"),
      whole<StatusDevice>(std::string(statusDeviceHead) + "}",
                          "expected ), found the end of the text"),
  });
}

TEST(RecordRefusal, OfAFieldThatTheRecordDoesNotHave) {
  expectRefused({
      fields<ConfigSwitchPort>("'created': True", "SwitchPort has no such attribute: created"),
      fields<ConfigDevice>("'registered': True", "Device has no such attribute: registered"),
      fields<StatusSwitchPort>("'created': True, 'devName': ''",
                               "SwitchPort has no such attribute: devName"),
      fields<StatusDevice>("'ifName': ''", "Device has no such attribute: ifName"),
      fields<StatusDevice>("'DevName': ''", "Device has no such attribute: DevName"),
      fields<StatusDevice>("'devName ': ''", "Device has no such attribute: devName "),
      fields<StatusDevice>("'devNam': ''", "Device has no such attribute: devNam"),
      fields<StatusDevice>("'': ''", "Device has no such attribute: "),
      whole<StatusDevice>(around<StatusDevice>("'a\\x00b': ''"),
                          "Device has no such attribute: " + std::string("a\0b", 3)),
  });
}

TEST(RecordRefusal, OfAListThatIsOutOfForm) {
  constexpr char const* noName = "expected a string in apostrophes, found ";
  expectRefused({
      fields<StatusDevice>("'registered': True,", (noName + std::string("'}'")).c_str()),
      fields<StatusDevice>(", 'registered': True", (noName + std::string("','")).c_str()),
      fields<StatusDevice>("registered: True", (noName + std::string("'r'")).c_str()),
      fields<StatusDevice>("'registered' True", "expected :, found 'T'"),
      fields<StatusDevice>("'registered': True 'devName': ''", "expected ,, found '''"),
      fields<StatusDevice>("'registered': True; 'devName': ''", "expected ,, found ';'"),
      whole<StatusDevice>(std::string(statusDeviceHead) + "}]", "expected ), found ']'"),
  });
}

TEST(RecordRefusal, OfAValueNamesItsField) {
  expectRefused({
      fields<ConfigSwitchPort>("'ifName': et3",
                               "ifName: expected a string in apostrophes, found 'e'"),
      fields<ConfigSwitchPort>("'devName': 'fap\\q'",
                               "devName: expected one of \\ ' n t r x after a backslash, "
                               "found 'q'"),
      fields<ConfigSwitchPort>("'destId': -1", "destId: expected a decimal number, found '-'"),
      fields<ConfigSwitchPort>("'shadowIntfId': +1",
                               "shadowIntfId: expected a decimal number, found '+'"),
      fields<ConfigSwitchPort>("'trafficClass': 4294967296",
                               "trafficClass: expected a number from 0 to 4294967295, found a "
                               "larger one"),
      fields<ConfigSwitchPort>("'fapNum': '1'", "fapNum: expected a decimal number, found '''"),
      fields<ConfigSwitchPort>("'fapNum': 1.5", "expected ,, found '.'"),
      fields<ConfigSwitchPort>("'ctrl': true", "ctrl: expected True or False, found 't'"),
      fields<ConfigSwitchPort>("'hwLag': 1", "hwLag: expected True or False, found '1'"),
      fields<ConfigSwitchPort>("'macAddr': '00:1c:73:0a:0b'",
                               "macAddr: expected a MAC address such as "
                               "'00:1c:73:0a:0b:0c', found '00:1c:73:0a:0b'"),
      fields<ConfigSwitchPort>("'macAddr': 0",
                               "macAddr: expected a string in apostrophes, found '0'"),
      fields<ConfigDevice>("'fapType': 'fapTypeOther'",
                           "fapType: expected 'fapTypeUnknown', 'fapTypeArad' or "
                           "'fapTypeAradDual', found 'fapTypeOther'"),
      fields<ConfigDevice>("'fapType': 1", "fapType: expected a string in apostrophes, found '1'"),
      fields<ConfigDevice>("'pciHam': Nothing", "pciHam: expected EntityPtr or None, found 'N'"),
      fields<ConfigDevice>("'pciHam': EntityPtr('/pci/nowhere', 'Fru::PciHam')",
                           "pciHam: there is no entity at '/pci/nowhere'"),
      fields<ConfigDevice>("'pciHam': EntityPtr('/', 'Mox::Dir')",
                           "pciHam: expected a reference to a 'Fru::PciHam', found one to a "
                           "'Mox::Dir'"),
  });
}

TEST(RecordRefusal, OfAHandlePathThatLeadsToAnotherType) {
  ASSERT_NE(handles()[1], nullptr);  // makes /pci
  expectRefused({fields<ConfigDevice>("'pciHam': EntityPtr('/pci', 'Fru::PciHam')",
                                      "pciHam: expected a 'Fru::PciHam' at '/pci', found a "
                                      "'Mox::Dir'")});
}

TEST(RecordRefusal, OfANumberOfFapsThatNoDeviceHas) {
  constexpr char const* message = "Device::numFaps < 1 or > 3 not allowed";
  expectRefused({
      fields<ConfigDevice>("'numFaps': 0", message),
      fields<ConfigDevice>("'numFaps': 4", message),
      fields<ConfigDevice>("'numFaps': 4294967295", message),
  });
}

TEST(RecordRefusal, OfTheNumberOfFapsComesAfterTheTextIsRead) {
  expectRefused({
      fields<ConfigDevice>("'numFaps': 4, 'sflowPort': x",
                           "sflowPort: expected a decimal number, found 'x'"),
      whole<ConfigDevice>(std::string(configDeviceHead) + "'numFaps': 4",
                          "premature end of value type Device"),
      whole<ConfigDevice>(around<ConfigDevice>("'numFaps': 4") + "junk",
                          "Device::numFaps < 1 or > 3 not allowed"),
  });
}

template <class Record>
class Leftover : public testing::Test {};
TYPED_TEST_SUITE(Leftover, AllRecords);

TYPED_TEST(Leftover, IsRefusedWithTheColumnOfItsFirstCharacter) {
  std::string const text(valueToStrep(TypeParam()).view());
  struct {
    std::string blanks;
    std::string junk;
  } const all[] = {{"", "x"}, {" \t\n\r", "})"}, {" ", text}, {"", ")"}};
  for (auto const& [blanks, junk] : all) {
    std::string const more = text + blanks + junk;
    EXPECT_EQ(
        refusal([&] { read<TypeParam>(more); }),
        "junk at column " + std::to_string(text.size() + blanks.size()) + " deserializing " + more);
  }
}

}  // namespace
}  // namespace Hardware::Kest::Slice
