#include "test/agent/support/AgentProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

#include "test/agent/support/AgentSlices.h"
#include "test/agent/support/ScratchDirectory.h"

namespace Kest::Agent {
namespace {

class AgentOnce : public ScratchDirectory {};

TEST_F(AgentOnce, BringsTheSmallExampleUpAndEndsWithItsStatus) {
  fileIs("small.slice", [] {
    std::ifstream file(examples + "small.slice");
    return std::string(std::istreambuf_iterator<char>(file), {});
  }());
  AgentProcess agent(directory, {"--once", "small.slice"});
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.errors(), "");
  EXPECT_EQ(agent.output(), R"(config  ~ sliceId 'Linecard1'
config  + device fap0
status  device fap0: registered
status  deviceState fap0: unknown
config  + deviceState fap0 up
status  deviceState fap0: up
config  + switchportMode et1 access
config  + switchportMode et2 dot1qTunnel
config  + nativeVlan et1 10
config  + nativeVlan et2 20
config  + switchPort et1
status  switchPort et1: created
status  nativeVlan et1: 10
status  switchportMode et1: access
config  + switchPort et2
status  switchPort et2: created
status  nativeVlan et2: 20
status  switchportMode et2: dot1qTunnel
config  + switchPort et3
status  switchPort et3: created
config  + switchPort et4
status  switchPort et4: created
small.slice: announced 11 changes, 0 unchanged entries left alone
device fap0 handle=/pci/0000:05:00.0 chip-type=arad registered=yes state=up
port et1 device=fap0 destination=1 MAC=00:1c:73:00:00:01 created=yes native-VLAN=10 mode=access
port et2 device=fap0 destination=2 MAC=00:1c:73:00:00:02 created=yes native-VLAN=20 mode=dot1qTunnel
port et3 device=fap0 destination=3 MAC=00:1c:73:00:00:03 created=yes native-VLAN=- mode=-
port et4 device=fap0 destination=4 MAC=00:1c:73:00:00:04 created=yes native-VLAN=- mode=-
)");
}

TEST_F(AgentOnce, AppliesAnEmptyFile) {
  fileIs("slice", "");
  AgentProcess agent(directory, {"--once", "slice"});
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.output(), "slice: announced 0 changes, 0 unchanged entries left alone\n");
  EXPECT_EQ(agent.errors(), "");
}

TEST_F(AgentOnce, NamesWhatDidNotComeUpAndEndsWithOne) {
  fileIs("slice", device("fap0") + device("fap1") + device("fap2") + port(1) + port(2));
  fileIs("faults",
         "fail kestDmaDeviceParam 'fap1' 22 always\n"
         "fail kestDmaDeviceUp 'fap2' 5 times 1\n"
         "fail kestDmaIfadd 'et2' 12 always\n");
  AgentProcess agent(directory, {"--once", "slice", "--driver-faults", "faults"});
  agent.outputUntil("slice: announced 8 changes, 0 unchanged entries left alone\n");
  EXPECT_EQ(agent.ended(), 1);
  EXPECT_EQ(agent.errors(), "");
  EXPECT_EQ(agent.output(),
            R"(device fap0 handle=/pci/fap0 chip-type=unknown registered=yes state=up
device fap1 handle=/pci/fap1 chip-type=unknown registered=no state=unknown
device fap2 handle=/pci/fap2 chip-type=unknown registered=yes state=unknown
port et1 device=- destination=0 MAC=00:00:00:00:00:00 created=yes native-VLAN=- mode=-
port et2 device=- destination=0 MAC=00:00:00:00:00:00 created=no native-VLAN=- mode=-
not up: device fap1
not up: device fap2
not up: port et2
)");
}

TEST_F(AgentOnce, EndsWithTheNumberOfASignalThatComesBeforeItIsDone) {
  fileIs("slice", manyPorts());
  for (auto const& [number, name] : {std::pair(SIGTERM, "SIGTERM"), {SIGINT, "SIGINT"}}) {
    AgentProcess agent(directory, {"--once", "slice"});
    agent.outputUntil("config  + switchPort et1\n");
    agent.signalIs(number);
    agent.outputUntil(std::string("ended by ") + name + "\n");
    EXPECT_EQ(agent.ended(), 128 + number);
    EXPECT_EQ(agent.output(), "") << "something was applied after the end";
    EXPECT_EQ(agent.errors(), "");
  }
}

TEST_F(AgentOnce, StartsWhereEverythingIsBoundAtOnce) {
  fileIs("slice", device("fap0"));
  AgentProcess agent(directory, {"--once", "slice"}, AgentProcess::Output::pipes,
                     {{"LD_BIND_NOW", "1"}});
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.errors(), "");
}

class AgentRefusal : public ScratchDirectory {
 protected:
  /// The message with which the agent ends, having said and done nothing.
  std::string refusal(std::vector<std::string> const& arguments) const {
    AgentProcess agent(directory, arguments);
    EXPECT_EQ(agent.ended(), 2);
    EXPECT_EQ(agent.output(), "");
    return agent.errors();
  }
};

TEST_F(AgentRefusal, OfTheCommandLine) {
  EXPECT_EQ(refusal({}), "SLICEFILE is required\nRun with --help for more information.\n");
  fileIs("slice", device("fap0"));
  EXPECT_EQ(refusal({"slice", "--trace", "!"}),
            "kest-slice-agent: trace setting '!': expected '/' and levels at column 1, found the "
            "end\n");
}

TEST_F(AgentRefusal, OfTheSliceFile) {
  EXPECT_EQ(refusal({"missing"}),
            "kest-slice-agent: missing: cannot be read: No such file or directory\n");
  EXPECT_EQ(refusal({"."}), "kest-slice-agent: .: cannot be read: it is no regular file\n");
  fileIs("slice", device("fap0") + "nativeVlan 'et1' 4095 # too many\n");
  EXPECT_EQ(refusal({"slice"}),
            "kest-slice-agent: slice:4:18: expected a VLAN id from 1 to 4094, or 0 for none, found "
            "4095\n"
            "  nativeVlan 'et1' 4095 # too many\n"
            "                   ^\n");
}

TEST_F(AgentRefusal, OfTheDriver) {
  fileIs("slice", device("fap0"));
  EXPECT_EQ(refusal({"slice", "--driver", KEST_DRIVER_INCOMPLETE}),
            "kest-slice-agent: driver " KEST_DRIVER_INCOMPLETE
            " lacks\n  Hardware::Kest::kestDmaIsDeviceUp(Mox::String8, bool*)\n");
  EXPECT_EQ(refusal({"slice", "--driver", "/missing.so"}),
            "kest-slice-agent: driver /missing.so cannot be loaded: /missing.so: cannot open "
            "shared object file: No such file or directory\n");
}

TEST_F(AgentRefusal, OfADriverWithoutAName) {
  fileIs("slice", device("fap0"));
  EXPECT_EQ(refusal({"slice", "--driver", ""}), "kest-slice-agent: no driver is named\n");
}

TEST_F(AgentRefusal, OfTheFaultFile) {
  fileIs("slice", device("fap0"));
  fileIs("faults", "fail\n");
  EXPECT_EQ(refusal({"slice", "--driver-faults", "faults"}),
            "kest-slice-agent: faults:1:5: expected the name of a driver operation, found the "
            "end of the line\n");
}

/// An end that nobody foresaw is a signal, which whoever watches over the agent takes for a reason
/// to start it again.
class AgentAbort : public ScratchDirectory {};

TEST_F(AgentAbort, AtTheStartForLackOfMemory) {
  fileIs("slice", "");
  AgentProcess agent(
      directory, {"slice", "--driver", KEST_DRIVER_SHORT_OF_MEMORY, "--driver-faults", "faults"});
  EXPECT_EQ(agent.ended(), -SIGABRT);
  EXPECT_EQ(agent.output(), "");
  EXPECT_EQ(agent.errors(), "kest-slice-agent: aborting: std::bad_alloc\n");
}

TEST_F(AgentAbort, WhileItRuns) {
  if (sanitizersNeedDescriptors) GTEST_SKIP();
  fileIs("slice", "");
  AgentProcess agent(directory, {"slice"});
  agent.outputUntil("left alone\n");
  rlimit const none{0, 0};  // the system then refuses to wait for descriptors
  ASSERT_EQ(prlimit(agent.pid(), RLIMIT_NOFILE, &none, nullptr), 0);
  agent.signalIs(SIGHUP);
  EXPECT_EQ(agent.ended(), -SIGABRT);
  std::string const errors = agent.errors();  // then, in some builds, counts that cannot be kept
  EXPECT_EQ(errors.substr(0, errors.find('\n') + 1),
            "kest-slice-agent: aborting: poll: Invalid argument\n");
}

class AgentOnATerminal : public ScratchDirectory {
 protected:
  AgentOnATerminal() {
    fileIs("slice", device("fap0") + port(1) + "switchportMode 'et1' 'switchportModeTrunk'\n");
  }

  static constexpr char const* progress =
      "ports [........................] 0/1  + device fap0\r\x1b[K"
      "ports [........................] 0/1  + deviceState fap0 up\r\x1b[K"
      "ports [........................] 0/1  + switchportMode et1 trunk\r\x1b[K"
      "ports [........................] 0/1  + switchPort et1\r\x1b[K"
      "slice: announced 4 changes, 0 unchanged entries left alone\n";
  static constexpr char const* table = R"(
device  handle     chip type  registered  state
fap0    /pci/fap0  unknown    yes         up

interface  device  destination  MAC                created  native VLAN  mode
et1        -       0            00:00:00:00:00:00  yes      -            -
)";
};

TEST_F(AgentOnATerminal, ShowsProgressAndThenTables) {
  AgentProcess agent(directory, {"--once", "slice"}, AgentProcess::Output::terminal,
                     {{"NO_COLOR", "1"}});
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.output(), std::string(progress) + table);
}

TEST_F(AgentOnATerminal, ColoursUnlessNoColorHasAValue) {
  AgentProcess agent(directory, {"--once", "slice"}, AgentProcess::Output::terminal,
                     {{"NO_COLOR", ""}});
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_THAT(agent.output(), testing::HasSubstr("fap0    /pci/fap0  unknown    "
                                                 "\x1b[32myes       \x1b[0m  \x1b[32mup\x1b[0m"));
}

TEST_F(AgentOnATerminal, ShowsPlainLinesWhenTheTerminalIsDumb) {
  AgentProcess agent(directory, {"--once", "slice"}, AgentProcess::Output::terminal,
                     {{"TERM", "dumb"}});
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.output(), R"(config  + device fap0
status  device fap0: registered
status  deviceState fap0: unknown
config  + deviceState fap0 up
status  deviceState fap0: up
config  + switchportMode et1 trunk
config  + switchPort et1
status  switchPort et1: created
slice: announced 4 changes, 0 unchanged entries left alone
device fap0 handle=/pci/fap0 chip-type=unknown registered=yes state=up
port et1 device=- destination=0 MAC=00:00:00:00:00:00 created=yes native-VLAN=- mode=-
)");
}

TEST_F(AgentOnATerminal, ShowsTheTablesAgainWhenTheFileIsReadAgain) {
  AgentProcess agent(directory, {"slice"}, AgentProcess::Output::terminal, {{"NO_COLOR", "1"}});
  EXPECT_EQ(agent.outputUntil("-            -\n"), "cold start\n" + std::string(progress) + table);
  agent.signalIs(SIGHUP);
  EXPECT_EQ(agent.outputUntil("-            -\n"),
            std::string("slice: announced 0 changes, 4 unchanged entries left alone\n") + table);
  agent.signalIs(SIGINT);
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.output(), "ended by SIGINT\n");
}

}  // namespace
}  // namespace Kest::Agent
