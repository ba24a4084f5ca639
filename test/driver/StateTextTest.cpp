#include "driver/sim/StateText.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "platform/mox/RangeException.h"
#include "test/driver/StateFixture.h"
#include "test/support/Effort.h"

namespace Hardware::Kest::Sim {
namespace {

using namespace std::string_view_literals;

TEST(StateText, HoldsEveryFieldAndReadsBackToTheSame) {
  EXPECT_EQ(stateText(richState()), richText);
  EXPECT_TRUE(readState(richText, "") == richState());
}

TEST(StateText, ReadsWhatPeopleMayWrite) {
  struct {
    char const* from;
    char const* to;
    char const* same;  ///< what it is the same as
  } const table[] = {
      {"\n  \"format\"", "\"format\"", "\n  \"format\""},
      {"\"mode\": true\n", "\"mode\":true", "\"mode\": true\n"},
      {"\"fapTypeArad\"", "1", "\"fapTypeArad\""},
      {"\"fapTypeArad\"", "\"\\u0066apTypeArad\"", "\"fapTypeArad\""},
      {"\u00e9", "\\u00e9", "\u00e9"},
      {"\"destId\": 7", "\"destId\": -0", "\"destId\": 0"},
  };
  for (auto const& row : table) {
    EXPECT_EQ(stateText(readState(changed(row.from, row.to), "my.state")),
              changed(row.from, row.same))
        << row.to;
  }
  EXPECT_EQ(
      stateText(readState("{\"devices\":{},\"interfaces\":{},\"format\":\"kest-dma-sim-state/"
                          "1\"}",
                          "")),
      "{\n  \"format\": \"kest-dma-sim-state/1\",\n  \"interfaces\": {},\n  \"devices\": {}\n}\n");
}

TEST(StateText, SaysWhereItIsNoJson) {
  struct {
    std::string text;
    char const* error;
  } const table[] = {
      {"", ":1:1: no JSON: unexpected end of input; expected '[', '{', or a literal"},
      {"{} {}", ":1:4: no JSON: unexpected '{'; expected end of input"},
      {"{\n  \"format\" 1", ":2:12: no JSON: unexpected number literal; expected ':'"},
      {"{\"a\":\n\n tru}", ":3:5: no JSON: invalid literal"},
      {"{\"a\": {\"b\": {}, \"b\": {}}}", ":1:17: /a/b: given a second time"},
      {"{\"format\": [[1]]}", ":1:2: /format: expected \"kest-dma-sim-state/1\", found an array"},
      {"[]", ":1:1: expected an object, found an array"},
      {"7", ":1:1: expected an object, found 7"},
      {"{}", ":1:1: /format: expected \"kest-dma-sim-state/1\", found nothing"},
  };
  for (auto const& row : table) EXPECT_EQ(refusal(row.text), std::string("my.state") + row.error);
}

TEST(StateText, SaysWhatIsNoState) {
  struct {
    char const* from;
    char const* to;
    char const* error;
  } const table[] = {
      {"state/1", "state/2",
       "2:3: /format: expected \"kest-dma-sim-state/1\", found \"kest-dma-sim-state/2\""},
      {"\"kest-dma-sim-state/1\"", "1", "2:3: /format: expected \"kest-dma-sim-state/1\", found 1"},
      {"\"interfaces\": {", "\"interfaces\": null, \"other\": {",
       "3:3: /interfaces: expected an object, found null"},
      {"\"devices\"", "\"device\"", "1:1: /devices: expected an object, found nothing"},
      {"{\n  \"format\"", "{ \"faults\": \"\", \"format\"",
       "1:3: /faults: expected format, interfaces or devices, found another member"},
      {"\"et3/1\"", "\"et3~%\"",
       "4:5: /interfaces/et3~0%: expected the string's form \"et3~%25\", found \"et3~%\""},
      {"%FF", "%ff",
       "16:5: /interfaces/%ff\"%25\\x00\\x0a: expected the string's form "
       "\"%25ff\\\"%25\\u0000\\n\", "
       "found \"%ff\\\"%25\\u0000\\n\""},
      {"%FF", "%41",
       "16:5: /interfaces/%41\"%25\\x00\\x0a: expected the string's form \"A\\\"%25\\u0000\\n\", "
       "found "
       "\"%41\\\"%25\\u0000\\n\""},
      {"\"et3/1\"", "\"\"", "4:5: /interfaces/: expected an interface's name, found an empty one"},
      {"\"destId\": 7", "\"destId\": 2147483648",
       "5:7: /interfaces/et3~11/destId: expected an integer from -2147483648 to 2147483647, found "
       "2147483648"},
      {"\"destId\": 7", "\"destId\": -2147483649",
       "5:7: /interfaces/et3~11/destId: expected an integer from -2147483648 to 2147483647, found "
       "-2147483649"},
      {"\"destId\": 7", "\"destId\": 18446744073709551616",
       "5:7: /interfaces/et3~11/destId: expected an integer from -2147483648 to 2147483647, found "
       "1.8446744073709552e+19"},
      {"\"destId\": 7", "\"destId\": 7.0",
       "5:7: /interfaces/et3~11/destId: expected an integer from -2147483648 to 2147483647, found "
       "7.0"},
      {"\"destId\": 7", "\"destId\": \"7\"",
       "5:7: /interfaces/et3~11/destId: expected an integer from -2147483648 to 2147483647, found "
       "\"7\""},
      {"\"destId\": 7,", "",
       "4:5: /interfaces/et3~11/destId: expected an integer from -2147483648 to 2147483647, found "
       "nothing"},
      {"\"destId\": 7", "\"destId\": {\"a\": 1}",
       "5:7: /interfaces/et3~11/destId: expected an integer from -2147483648 to 2147483647, found "
       "an "
       "object"},
      {"\"destId\": 7", "\"destId\": 7, \"destid\": 7",
       "5:20: /interfaces/et3~11/destid: expected destId, shadowIntfId, trafficClass, devName, "
       "fapNum, "
       "ctrl, hwLag, macAddr, nativeVlan or mode, found another member"},
      {"\"fap0\"", "null", "8:7: /interfaces/et3~11/devName: expected a string, found null"},
      {"\"fap0\"", "\"fap%30\"",
       "8:7: /interfaces/et3~11/devName: expected the string's form \"fap0\", found \"fap%30\""},
      {"\"fap0\"", "\"fap9\"",
       "8:7: /interfaces/et3~11/devName: expected the name of a device that there is, or an empty "
       "one, "
       "found \"fap9\""},
      {"\"fapNum\": 1", "\"fapNum\": 3",
       "9:7: /interfaces/et3~11/fapNum: expected 0 to 2, found 3"},
      {"\"fapNum\": 1", "\"fapNum\": -1",
       "9:7: /interfaces/et3~11/fapNum: expected 0 to 2, found -1"},
      {"\"ctrl\": true", "\"ctrl\": 1",
       "10:7: /interfaces/et3~11/ctrl: expected true or false, found 1"},
      {"\"hwLag\": false,", "",
       "4:5: /interfaces/et3~11/hwLag: expected true or false, found nothing"},
      {"00:1c:73:0a:0b:0c", "00:1c:73:0a:0b",
       "12:7: /interfaces/et3~11/macAddr: expected a MAC address such as '00:1c:73:0a:0b:0c', "
       "found "
       "'00:1c:73:0a:0b'"},
      {"\"nativeVlan\": 10", "\"nativeVlan\": 0",
       "13:7: /interfaces/et3~11/nativeVlan: expected 1 to 4094, or 4096 for none, found 0"},
      {"\"nativeVlan\": 10", "\"nativeVlan\": 4095",
       "13:7: /interfaces/et3~11/nativeVlan: expected 1 to 4094, or 4096 for none, found 4095"},
      {"\"nativeVlan\": 10", "\"nativeVlan\": 65536",
       "13:7: /interfaces/et3~11/nativeVlan: expected an integer from 0 to 65535, found 65536"},
      {"\"nativeVlan\": 10", "\"nativeVlan\": 4096",
       "14:7: /interfaces/et3~11/mode: expected false where there is no native VLAN, found true"},
      {"\"/pci/a\": {", "\"/pci/a\": false, \"/pci/c\": {",
       "36:5: /devices/~1pci~1a: expected an object, found false"},
      {"\"name\": \"\"", "\"name\": \"fap0\"",
       "37:7: /devices/~1pci~1a/name: expected a name that no other device has, found \"fap0\""},
      {"\"param\": null", "\"param\": 0",
       "32:7: /devices//param: expected an object or null, found 0"},
      {"\"param\": null,", "", "30:5: /devices//param: expected an object or null, found nothing"},
      {"\"numFaps\": 1", "\"numFaps\": 0",
       "39:9: /devices/~1pci~1a/param/numFaps: expected 1 to 3, found 0"},
      {"\"numFaps\": 1", "\"numFaps\": 4",
       "39:9: /devices/~1pci~1a/param/numFaps: expected 1 to 3, found 4"},
      {"\"numFaps\": 1", "\"numFaps\": -1",
       "39:9: /devices/~1pci~1a/param/numFaps: expected an integer from 0 to 4294967295, found -1"},
      {"\"fapTypeArad\"", "\"arad\"",
       "40:9: /devices/~1pci~1a/param/fapType: expected 'fapTypeUnknown', 'fapTypeArad' or "
       "'fapTypeAradDual', found 'arad'"},
      {"\"fapTypeArad\"", "1.5",
       "40:9: /devices/~1pci~1a/param/fapType: expected a FAP type's name or number, found 1.5"},
      {"\"fapTypeArad\"", "2147483648",
       "40:9: /devices/~1pci~1a/param/fapType: expected an integer from -2147483648 to 2147483647, "
       "found 2147483648"},
      {"\"fapTypeArad\"", "true",
       "40:9: /devices/~1pci~1a/param/fapType: expected a FAP type's name or number, found true"},
      {"\"sflowPort\": 4", "\"sflowPort\": 4294967296",
       "44:9: /devices/~1pci~1a/param/sflowPort: expected an integer from 0 to 4294967295, found "
       "4294967296"},
      {"\"up\": true", "\"up\": \"up\"",
       "49:7: /devices/~1pci~1a/up: expected true or false, found \"up\""},
      {"\"flips\": 3", "\"flips\": -3",
       "50:7: /devices/~1pci~1a/flips: expected an integer from 0 to 4294967295, found -3"},
  };
  for (auto const& row : table) {
    EXPECT_EQ(refusal(changed(row.from, row.to)), std::string("my.state:") + row.error) << row.to;
  }
}

TEST(StateText, IsBounded) {
  auto const device = [](std::string const& path, std::string const& name) {
    return changed("\"\": {\n      \"name\": \"\"",
                   "\"" + path + "\": {\n      \"name\": \"" + name + "\"");
  };
  auto const levels = [](std::size_t count) {
    std::string path;
    while (count-- > 0) path += "/a";
    return path;
  };
  std::string const longest(255, 'a');
  EXPECT_EQ(refusal(device(longest, longest)), "accepted");
  EXPECT_EQ(refusal(device(levels(32), "")), "accepted");
  EXPECT_EQ(refusal(device(longest + "%25", "")),
            "my.state:30:5: /devices/" + std::string(81, 'a') + " ... " + std::string(87, 'a') +
                "%25: expected a PCI path of at most 255 bytes "
                "and 32 levels, found a longer or deeper one");
  EXPECT_EQ(refusal(device(levels(33), "")).substr(0, 26), "my.state:30:5: /devices/~1");
  EXPECT_EQ(
      refusal(device("", longest + "a")),
      "my.state:31:7: /devices//name: expected a name of at most 255 bytes, found a longer one");
  EXPECT_EQ(refusal(changed("et3/1", longest + longest)),
            "my.state:4:5: /interfaces/" + std::string(78, 'a') + " ... " + std::string(90, 'a') +
                ": expected a name of at most 255 bytes, found a longer one");

  std::string deep;
  for (int level = 1; level <= 15; ++level) deep += "{\"a\":";
  EXPECT_EQ(refusal(deep + "{}" + std::string(15, '}')).substr(0, 24), "my.state:1:1: /format: e");
  std::string pointer;
  for (int level = 1; level <= 16; ++level) pointer += "/a";
  EXPECT_EQ(refusal(deep + "{\"a\":\n {"),
            "my.state:2:2: " + pointer + ": expected at most 16 levels of nesting, found more");
}

TEST(StateText, RefusesEveryBeginningOfAState) {
  std::string_view const whole = std::string_view(richText, std::string_view(richText).size() - 1);
  for (std::size_t bytes = 0; bytes < whole.size(); ++bytes) {
    EXPECT_NE(refusal(whole.substr(0, bytes)), "accepted") << bytes;
  }
}

TEST(StateText, IsReadOrRefusedWhateverItIs) {
  std::mt19937_64 random(1);
  auto const below = [&](std::size_t bound) { return static_cast<std::size_t>(random() % bound); };
  int read = 0;
  for (int run = 0; run < effort(5000); ++run) {
    std::string text = richText;
    for (auto changes = 1 + below(3); changes > 0; --changes) {
      constexpr std::string_view bytes = "\"{}[],:%0129-.e\\/ \n\0\xc3\xff"sv;
      text[below(text.size())] = bytes[below(bytes.size())];
    }
    try {
      SliceState const state = readState(text, "my.state");
      EXPECT_TRUE(readState(stateText(state), "") == state) << text;
      ++read;
    } catch (Mox::RangeException const& exception) {
      EXPECT_EQ(exception.text().view().substr(0, 9), "my.state:") << text;
    }
  }
  EXPECT_GT(read, effort(100));
}

}  // namespace
}  // namespace Hardware::Kest::Sim
