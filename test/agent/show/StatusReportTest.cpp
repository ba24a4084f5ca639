#include "agent/show/StatusReport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "agent/access/NaturalOrder.h"
#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

using Hardware::Kest::Slice::DeviceState;

/// A slice of which a part came up: fap0 and its ports et1 and et10 are as configured, fap1 was
/// refused, fap2 is registered but not up, et2 was not created, et3 is no longer configured.
class StatusReport : public testing::Test {
 protected:
  StatusReport() {
    slice.handles.enterTree();
    device("fap0", true, DeviceState::deviceStateUp_);
    device("fap1", false, DeviceState::deviceStateUnknown_);
    device("fap2", true, DeviceState::deviceStateUnknown_);
    port("et10", true);
    port("et1", true);
    port("et2", false);
    port("et3", true);
    status->nativeVlanIs("et1", 4094);
    status->switchportModeIs("et1", Bridging::SwitchportMode::switchportModeDot1qTunnel_);
  }

  void device(char const* devName, bool registered, DeviceState state) {
    Status::Device record;
    record.devNameIs(devName);
    record.registeredIs(registered);
    status->deviceIs(record);
    status->deviceStateIs(devName, state);
  }

  void port(char const* ifName, bool created) {
    Status::SwitchPort record;
    record.ifNameIs(ifName);
    record.createdIs(created);
    status->switchPortIs(record);
  }

  std::string shown(bool terminal, bool colour) const {
    std::ostringstream out;
    Console console(out, terminal, colour);
    showStatus(console, *slice.config, *status);
    return out.str();
  }

  Slice slice = parseSlice(
      "slice", "pciHam '/pci/0000:05:00.0'\n" +
                   deviceText("'devName': 'fap0', 'fapType': 'fapTypeAradDual', 'pciHam': "
                              "EntityPtr('/pci/0000:05:00.0', 'Fru::PciHam')") +
                   deviceText("'devName': 'fap1'") + deviceText("'devName': 'fap2'") +
                   "deviceState 'fap0' 'deviceStateUp'\ndeviceState 'fap1' 'deviceStateDown'\n"
                   "deviceState 'fap2' 'deviceStateUp'\n" +
                   portText("'ifName': 'et1', 'devName': 'fap0', 'destId': 101, "
                            "'macAddr': '00:1c:73:00:00:01'") +
                   portText("'ifName': 'et2', 'destId': 2") + portText("'ifName': 'et10'"));
  Mox::Ptr<Status> status{new Status("status")};
};

TEST_F(StatusReport, IsOneLineEachWithoutATerminal) {
  EXPECT_EQ(shown(false, false),
            R"(device fap0 handle=/pci/0000:05:00.0 chip-type=aradDual registered=yes state=up
device fap1 handle=- chip-type=unknown registered=no state=unknown
device fap2 handle=- chip-type=unknown registered=yes state=unknown
port et1 device=fap0 destination=101 MAC=00:1c:73:00:00:01 created=yes native-VLAN=4094 mode=dot1qTunnel
port et2 device=- destination=2 MAC=00:00:00:00:00:00 created=no native-VLAN=- mode=-
port et3 device=- destination=0 MAC=00:00:00:00:00:00 created=yes native-VLAN=- mode=-
port et10 device=- destination=0 MAC=00:00:00:00:00:00 created=yes native-VLAN=- mode=-
)");
}

TEST_F(StatusReport, IsTwoTablesOnATerminal) {
  EXPECT_EQ(shown(true, false), R"(
device  handle             chip type  registered  state
fap0    /pci/0000:05:00.0  aradDual   yes         up
fap1    -                  unknown    no          unknown
fap2    -                  unknown    yes         unknown

interface  device  destination  MAC                created  native VLAN  mode
et1        fap0    101          00:1c:73:00:00:01  yes      4094         dot1qTunnel
et2        -       2            00:00:00:00:00:00  no       -            -
et3        -       0            00:00:00:00:00:00  yes      -            -
et10       -       0            00:00:00:00:00:00  yes      -            -
)");
}

/// Every "{X text}" of the template in the colour X: h heading, g good, b bad.
std::string painted(std::string text) {
  auto const replaceAll = [&](std::string const& what, std::string const& with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != text.npos; at += with.size()) {
      text.replace(at, what.size(), with);
    }
  };
  replaceAll("{h ", "\x1b[1m");
  replaceAll("{g ", "\x1b[32m");
  replaceAll("{b ", "\x1b[31m");
  replaceAll("}", "\x1b[0m");
  return text;
}

TEST_F(StatusReport, ColoursHeadingsAndWhatIsGoodOrBad) {
  EXPECT_EQ(shown(true, true), painted(R"(
{h device}  {h handle           }  {h chip type}  {h registered}  {h state}
fap0    /pci/0000:05:00.0  aradDual   {g yes       }  {g up}
fap1    -                  unknown    {b no        }  {b unknown}
fap2    -                  unknown    {g yes       }  {b unknown}

{h interface}  {h device}  {h destination}  {h MAC              }  {h created}  {h native VLAN}  {h mode}
et1        fap0    101          00:1c:73:00:00:01  {g yes    }  4094         dot1qTunnel
et2        -       2            00:00:00:00:00:00  {b no     }  -            -
et3        -       0            00:00:00:00:00:00  {g yes    }  -            -
et10       -       0            00:00:00:00:00:00  {g yes    }  -            -
)"));
}

TEST_F(StatusReport, ListsWhatIsConfiguredAndNotUp) {
  EXPECT_EQ(notUp(*slice.config, *status),
            (std::vector<std::string>{"device fap1", "device fap2", "port et2"}));
}

TEST(EmptyStatusReport, ShowsNothing) {
  Mox::Ptr<Config> const config(new Config("config"));
  Mox::Ptr<Status> const status(new Status("status"));
  std::ostringstream out;
  for (bool const terminal : {false, true}) {
    Console console(out, terminal, terminal);
    showStatus(console, *config, *status);
  }
  EXPECT_EQ(out.str(), "");
  EXPECT_TRUE(notUp(*config, *status).empty());
}

TEST(NaturalOrder, PutsNamesAsPeopleNumberThem) {
  std::vector<std::string> const ordered = {"",
                                            "07",
                                            "7",
                                            "8",
                                            "et",
                                            "et0",
                                            "et1",
                                            "et1/1",
                                            "et1/2",
                                            "et1/10",
                                            "et1a",
                                            "et2",
                                            "et9",
                                            "et10",
                                            "et10/0",
                                            "et11",
                                            "et99999999999999999998",
                                            "et99999999999999999999",
                                            "eth",
                                            "fap"};
  std::vector<std::string> sorted = ordered;
  std::shuffle(sorted.begin(), sorted.end(), std::mt19937_64(1));
  std::sort(sorted.begin(), sorted.end(), naturalLess);
  EXPECT_EQ(sorted, ordered);
  for (std::string const& name : ordered) EXPECT_FALSE(naturalLess(name, name));
}

}  // namespace
}  // namespace Kest::Agent
