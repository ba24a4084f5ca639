#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "driver/sim/ChangeLine.h"
#include "driver/sim/StateText.h"
#include "test/driver/StateFixture.h"

namespace Hardware::Kest::Sim {
namespace {

using namespace std::string_view_literals;

/// Texts of changes, each with its check.
std::string withChanges(std::string text, std::initializer_list<char const*> changes) {
  std::uint32_t check = checkOf(text);
  for (char const* change : changes) text += changeLine(change, check);
  return text;
}

constexpr char const* newDevice =
    R"({"devices":{"/pci/c":{"name":"fap2","param":null,"up":false,"flips":0}}})";
constexpr char const* newInterface =
    R"({"interfaces":{"et9":{"destId":1,"shadowIntfId":-1,"trafficClass":0,"devName":"fap2",)"
    R"("fapNum":0,"ctrl":false,"hwLag":false,"macAddr":"00:1c:73:0a:0b:0c","nativeVlan":4096,)"
    R"("mode":false}}})";

TEST(StateChange, IsFollowedByWhatHasChangedSince) {
  SliceState const before = richState();
  SliceState const found =
      readState(withChanges(richText, {newDevice, newInterface, "{\"interfaces\":{\"et3/1\":null}}",
                                       "{\"devices\":{\"/pci/a\":null},\"interfaces\":{}}", "{}"}),
                "my.state");
  auto interfaces = before.interfaces.all();
  interfaces.erase("et3/1");
  interfaces["et9"] = {{1, -1, 0, "fap2", 0, false, false, "00:1c:73:0a:0b:0c"}, 4096, false};
  auto devices = before.devices.all();
  devices.erase("/pci/a");
  devices["/pci/c"] = {"fap2", std::nullopt, false, 0};
  EXPECT_EQ(stateText(found), stateText({Interfaces(interfaces), Devices(devices)}));

  Change change;
  change.interfaces["et3/1"] = before.interfaces.all().at("et3/1");
  change.interfaces[Mox::String8("\xff\"%\0\n"sv)] = std::nullopt;
  EXPECT_EQ(changeText(change),
            R"({"interfaces":{"et3/1":{"destId":7,"shadowIntfId":-1,"trafficClass":2,)"
            R"("devName":"fap0","fapNum":1,"ctrl":true,"hwLag":false,)"
            R"("macAddr":"00:1c:73:0a:0b:0c","nativeVlan":10,"mode":true},)"
            R"("%FF\"%25\u0000\n":null},"devices":{}})");
}

TEST(StateChange, SaysWhichChangeIsWrong) {
  struct {
    char const* change;
    char const* error;
  } const table[] = {
      {"7", "70:11: expected an object, found 7"},
      {"", "70:11: no JSON: unexpected end of input; expected '[', '{', or a literal"},
      {R"({"format":{}})",
       "70:12: /format: expected a collection of the document, found another member"},
      {R"({"others":{}})",
       "70:12: /others: expected a collection of the document, found another member"},
      {R"({"devices":null})", "70:12: /devices: expected an object, found null"},
      {R"({"devices":{"/pci/a":null}})",
       "8:7: /interfaces/et3~11/devName: expected the name of a device that there is, or an empty "
       "one, found \"fap0\""},
      {R"({"devices":{"/pci/c":{}}})",
       "70:23: /devices/~1pci~1c/name: expected a string, found nothing"},
      {R"({"interfaces":{"et3/1":7}})", "70:26: /interfaces/et3~11: expected an object, found 7"},
  };
  for (auto const& row : table) {
    EXPECT_EQ(refusal(withChanges(richText, {row.change})), std::string("my.state:") + row.error);
  }
  std::string const other = withChanges(changed("\"destId\": 7", "\"destId\": 8"), {newDevice});
  std::string const line = other.substr(std::string_view(richText).size());
  std::string const ours =
      withChanges(richText, {newDevice}).substr(std::string_view(richText).size());
  EXPECT_EQ(refusal(richText + line), "my.state:70:1: expected '" + ours.substr(0, 10) +
                                          "', the check of all so far, found '" +
                                          line.substr(0, 10) + "'")
      << "of another document";
  EXPECT_NE(refusal(richText + ours + ours), "accepted") << "twice";
  EXPECT_EQ(refusal(ours), "my.state:1:1: no JSON: invalid literal") << "without a document";
}

TEST(StateChange, IsRefusedWhereAByteHasChangedBeforeTheEnd) {
  std::string const whole = withChanges(richText, {newDevice, newInterface, "{}"});
  for (std::size_t at = 0; at + 1 < whole.size(); ++at) {
    std::string damaged = whole;
    damaged[at] = static_cast<char>(damaged[at] ^ 1);
    EXPECT_NE(refusal(damaged), "accepted") << at;
  }
}

TEST(StateChange, EndsWithTheLastWholeChange) {
  std::string const before = withChanges(richText, {newDevice});
  std::string const whole = withChanges(richText, {newDevice, newInterface});
  for (std::size_t bytes = before.size(); bytes <= whole.size(); ++bytes) {
    EXPECT_EQ(readState(whole.substr(0, bytes), "").interfaces.all().size(),
              bytes < whole.size() ? 2u : 3u)
        << bytes;
  }
}

}  // namespace
}  // namespace Hardware::Kest::Sim
