#include "agent/slice/Comparison.h"

#include <gtest/gtest.h>

#include <ostream>

#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

using Texts = std::vector<std::string>;

struct ChangesRow {
  char const* name;
  std::string running;
  std::string wanted;
  Texts steps;
  std::size_t unchanged;
  std::size_t ports = 0;  // of the steps, those that create one
};

void PrintTo(ChangesRow const& row, std::ostream* out) {
  *out << row.name;
}

class ChangesTable : public testing::TestWithParam<ChangesRow> {};

TEST_P(ChangesTable, GivesTheStepsInTheMachinesOrder) {
  Slice const running = parseSlice("running", GetParam().running);
  Slice const wanted = parseSlice("wanted", GetParam().wanted);
  Changes const changes = changesBetween(*running.config, *wanted.config);
  Texts texts;
  std::size_t ports = 0;
  for (Change const& step : changes.steps) {
    texts.push_back(step.text);
    ports += step.createsPort ? 1 : 0;
  }
  EXPECT_EQ(texts, GetParam().steps);
  EXPECT_EQ(changes.unchanged, GetParam().unchanged);
  EXPECT_EQ(ports, GetParam().ports);
}

std::string const fap0 = deviceText("'devName': 'fap0'");
std::string const fap0Changed = deviceText("'devName': 'fap0', 'numFaps': 2");
std::string const up = "deviceState 'fap0' 'deviceStateUp'\n";
std::string const down = "deviceState 'fap0' 'deviceStateDown'\n";

std::string port(int number, std::string const& more = "") {
  return portText("'ifName': 'et" + std::to_string(number) + "'" + more);
}

ChangesRow const changesRows[] = {
    {"NothingWhenEqual",
     "sliceId 'a'\n" + up + fap0 + port(1) + "nativeVlan 'et1' 1",
     "nativeVlan 'et1' 1\n" + port(1) + fap0 + up + "sliceId 'a'",
     {},
     4},
    {"SliceIdAppears", "", R"(sliceId 'a\'b')", {R"(~ sliceId 'a\'b')"}, 0},
    {"DeviceAppearsBeforeItsState", "", up + fap0, {"+ device fap0", "+ deviceState fap0 up"}, 0},
    {"ChangedDeviceIsFollowedByItsOldState",
     up + fap0,
     up + fap0Changed,
     {"~ device fap0", "! deviceState fap0 announced again"},
     1},
    {"ChangedDeviceIsFollowedByItsNewState",
     up + fap0,
     down + fap0Changed,
     {"~ device fap0", "~ deviceState fap0 up -> down"},
     0},
    {"VlanAndModeComeBeforeAPortThatAppears",
     "",
     port(1) + "nativeVlan 'et1' 10\nswitchportMode 'et1' 'switchportModeDot1qTunnel'",
     {"+ switchportMode et1 dot1qTunnel", "+ nativeVlan et1 10", "+ switchPort et1"},
     0,
     1},
    {"VlanAndModeGoBeforeAPortThatGoes",
     port(1) + "nativeVlan 'et1' 10\nswitchportMode 'et1' 'switchportModeTrunk'",
     "",
     {"- nativeVlan et1", "- switchportMode et1", "- switchPort et1"},
     0},
    {"PortsChangeInNaturalOrder",
     port(2) + port(10) + port(9) + port(3),
     port(10, ", 'destId': 1") + port(2, ", 'ctrl': True") + port(9) + port(1) + port(11),
     {"- switchPort et3", "+ switchPort et1", "~ switchPort et2", "~ switchPort et10",
      "+ switchPort et11"},
     1,
     4},
    {"NamesWithControlCharacters",
     "",
     R"(nativeVlan 'et\n\x1b' 1)",
     {R"(+ nativeVlan et\n\x1b 1)"},
     0},
    {"EverythingAtOnce",
     "sliceId 'a'\n" + up + fap0 + port(1) + port(2) +
         "nativeVlan 'et1' 1\nnativeVlan 'et2' 2\nswitchportMode 'et2' 'switchportModeTrunk'",
     "sliceId 'b'\ndeviceState 'fap1' 'deviceStateDown'\n" + deviceText("'devName': 'fap1'") +
         port(2, ", 'devName': 'fap1'") + port(3) +
         "nativeVlan 'et2' 3\nswitchportMode 'et3' 'switchportModeTrunk'",
     {"~ sliceId 'b'", "- device fap0", "- deviceState fap0", "+ device fap1",
      "+ deviceState fap1 down", "- nativeVlan et1", "- switchportMode et2",
      "+ switchportMode et3 trunk", "~ nativeVlan et2 2 -> 3", "- switchPort et1",
      "~ switchPort et2", "+ switchPort et3"},
     0,
     2},
};

INSTANTIATE_TEST_SUITE_P(Rows, ChangesTable, testing::ValuesIn(changesRows),
                         [](auto const& row) { return row.param.name; });

}  // namespace
}  // namespace Kest::Agent
