#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "test/agent/support/AgentProcess.h"
#include "test/agent/support/AgentSlices.h"
#include "test/agent/support/ScratchDirectory.h"

namespace Kest::Agent {
namespace {

class AgentReload : public ScratchDirectory {
 protected:
  static constexpr char const* upAndRunning =
      "device fap0 handle=/pci/fap0 chip-type=unknown registered=yes state=up\n";

  /// Has the agent read the slice file again, which now holds this.
  void reload(AgentProcess const& agent, std::string const& slice) const {
    fileIs("slice", slice);
    agent.signalIs(SIGHUP);
  }

  /// Ends the agent, which has said all that it is to say.
  static void end(AgentProcess& agent, int signal, std::string const& name) {
    agent.signalIs(signal);
    EXPECT_EQ(agent.ended(), 0);
    EXPECT_EQ(agent.output(), "ended by " + name + "\n");
    EXPECT_EQ(agent.errors(), "");
  }
};

TEST_F(AgentReload, AppliesOnlyWhatDiffers) {
  fileIs("slice", device("fap0") + port(1) + "nativeVlan 'et1' 10\n");
  AgentProcess agent(directory, {"slice"});
  agent.outputUntil("native-VLAN=10 mode=access\n");

  reload(agent, device("fap0", ", 'numFaps': 2") + port(1) + port(2) +
                    "nativeVlan 'et1' 20\nnativeVlan 'et3' 30\n");
  EXPECT_EQ(agent.outputUntil("left alone\n"), R"(config  ~ device fap0
status  deviceState fap0: unknown
config  ! deviceState fap0 announced again
status  deviceState fap0: up
config  ~ nativeVlan et1 10 -> 20
status  nativeVlan et1: 20
config  + nativeVlan et3 30
config  + switchPort et2
status  switchPort et2: created
slice: announced 5 changes, 2 unchanged entries left alone
)");

  reload(agent, "sliceId 'empty'\n");
  EXPECT_EQ(agent.outputUntil("left alone\n"), R"(config  ~ sliceId 'empty'
config  - device fap0
status  device fap0: removed
config  - deviceState fap0
config  - nativeVlan et1
status  nativeVlan et1: removed
status  switchportMode et1: removed
config  - nativeVlan et3
config  - switchPort et1
status  switchPort et1: removed
config  - switchPort et2
status  switchPort et2: removed
slice: announced 7 changes, 0 unchanged entries left alone
)");
  end(agent, SIGTERM, "SIGTERM");
}

TEST_F(AgentReload, OfTheSameFileAnnouncesNothing) {
  fileIs("slice", device("fap0"));
  AgentProcess agent(directory, {"slice"});
  agent.outputUntil(upAndRunning);
  for (int times = 0; times < 2; ++times) {
    agent.signalIs(SIGHUP);
    EXPECT_EQ(agent.outputUntil("left alone\n"),
              "slice: announced 0 changes, 2 unchanged entries left alone\n");
  }
  end(agent, SIGINT, "SIGINT");
}

TEST_F(AgentReload, OfABadFileChangesNothing) {
  fileIs("slice", device("fap0"));
  AgentProcess agent(directory, {"slice"});
  agent.outputUntil(upAndRunning);

  reload(agent, "sliceId 'new'\ndeviceState 'fap0' 'deviceStateUnknown'\n");
  EXPECT_EQ(agent.outputUntil("^\n"),
            "not reloaded: slice:2:20: expected 'deviceStateUp' or 'deviceStateDown', "
            "found 'deviceStateUnknown'\n"
            "  deviceState 'fap0' 'deviceStateUnknown'\n"
            "                     ^\n");
  std::filesystem::remove(directory + "/slice");
  ASSERT_EQ(mkfifo((directory + "/slice").c_str(), 0600), 0);  // which nobody writes to
  agent.signalIs(SIGHUP);
  EXPECT_EQ(agent.outputUntil("\n"),
            "not reloaded: slice: cannot be read: it is no regular file\n");
  std::filesystem::remove(directory + "/slice");
  agent.signalIs(SIGHUP);
  EXPECT_EQ(agent.outputUntil("\n"),
            "not reloaded: slice: cannot be read: No such file or directory\n");

  reload(agent, device("fap0"));
  EXPECT_EQ(agent.outputUntil("left alone\n"),
            "slice: announced 0 changes, 2 unchanged entries left alone\n");
  end(agent, SIGTERM, "SIGTERM");
}

/// It may have been cut off.
TEST_F(AgentReload, RemovesHalfOfThePortsAtMostUnlessTheyAreFew) {
  std::string ports;
  for (int number = 1; number <= 10; ++number) ports += port(number);
  fileIs("slice", ports);
  AgentProcess agent(directory, {"slice"});
  agent.outputUntil(
      "port et10 device=- destination=0 MAC=00:00:00:00:00:00 created=yes "
      "native-VLAN=- mode=-\n");
  reload(agent, port(1) + port(2) + port(3) + port(4));
  EXPECT_EQ(
      agent.outputUntil("\n"),
      "not reloaded: slice would remove 6 of 10 ports: if that is meant, use kestctl apply\n");
  reload(agent, port(1) + port(2) + port(3) + port(4) + port(5));
  agent.outputUntil("slice: announced 5 changes, 5 unchanged entries left alone\n");
  reload(agent, port(1));
  agent.outputUntil("slice: announced 4 changes, 1 unchanged entries left alone\n");
  end(agent, SIGTERM, "SIGTERM");
}

TEST_F(AgentReload, WantsTheEndOfTheFileIfItIsRequired) {
  fileIs("slice", device("fap0") + "end\n");
  AgentProcess agent(directory, {"slice", "--require-end"});
  agent.outputUntil(upAndRunning);
  reload(agent, device("fap0"));
  EXPECT_EQ(agent.outputUntil("^\n"),
            "not reloaded: slice:4:1: expected 'end' as the last statement, found none\n"
            "  \n"
            "  ^\n");
  end(agent, SIGTERM, "SIGTERM");
  fileIs("slice", device("fap0"));
  AgentProcess another(directory, {"slice", "--require-end"});
  EXPECT_EQ(another.ended(), 2);
  EXPECT_EQ(another.errors(),
            "kest-slice-agent: slice:4:1: expected 'end' as the last statement, found none\n"
            "  \n"
            "  ^\n");
}

TEST_F(AgentReload, WaitsUntilTheFirstApplicationIsWhole) {
  fileIs("slice", port(1) + port(2) + port(3) + port(4));
  AgentProcess agent(directory, {"slice"});
  agent.outputUntil("config  + switchPort et1\n");
  reload(agent, port(1) + port(2) + port(3));
  agent.signalIs(SIGHUP);
  EXPECT_EQ(agent.outputUntil("left alone\n"), R"(status  switchPort et1: created
config  + switchPort et2
status  switchPort et2: created
config  + switchPort et3
status  switchPort et3: created
config  + switchPort et4
status  switchPort et4: created
slice: announced 4 changes, 0 unchanged entries left alone
)");
  EXPECT_EQ(
      agent.outputUntil("left alone\n"),
      R"(port et1 device=- destination=0 MAC=00:00:00:00:00:00 created=yes native-VLAN=- mode=-
port et2 device=- destination=0 MAC=00:00:00:00:00:00 created=yes native-VLAN=- mode=-
port et3 device=- destination=0 MAC=00:00:00:00:00:00 created=yes native-VLAN=- mode=-
port et4 device=- destination=0 MAC=00:00:00:00:00:00 created=yes native-VLAN=- mode=-
config  - switchPort et4
status  switchPort et4: removed
slice: announced 1 change, 3 unchanged entries left alone
)");
  end(agent, SIGTERM, "SIGTERM");
}

TEST_F(AgentReload, IsNotWaitedForWhenTheAgentIsToEnd) {
  fileIs("slice", manyPorts());
  AgentProcess agent(directory, {"slice"});
  agent.outputUntil("config  + switchPort et1\n");
  agent.signalIs(SIGHUP);
  agent.signalIs(SIGTERM);
  agent.outputUntil("ended by SIGTERM\n");
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.output(), "");
  EXPECT_EQ(agent.errors(), "");
}

}  // namespace
}  // namespace Kest::Agent
