#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "test/agent/support/AgentProcess.h"
#include "test/agent/support/Client.h"
#include "test/agent/support/ScratchDirectory.h"

/// The agent when nobody reads what it shows.
namespace Kest::Agent {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// A long one, for long lines.
std::string longPort(int number) {
  std::string const digits = std::to_string(number);
  return "et" + std::string(1000 - digits.size(), '0') + digits;
}

/// The native VLANs of so many ports that are not there, which takes no time.
std::string nativeVlans(int count, int vlan) {
  std::string text;
  for (int number = 1; number <= count; ++number) {
    text += "nativeVlan '" + longPort(number) + "' " + std::to_string(vlan) + "\n";
  }
  return text;
}

class AgentOutput : public ScratchDirectory {
 protected:
  static constexpr int many = 400;  // lines, more than the agent and the system keep

  AgentOutput() { fileIs("slice", nativeVlans(many, 10)); }

  /// Waits until the last line of the file has been applied.
  void awaitApplied(std::string const& vlan) const {
    std::string const request =
        R"({"verb":"get","path":"config/nativeVlan/)" + longPort(many) + R"(","form":"text"})";
    std::string answer;
    Client client(directory + "/control.sock");
    do {
      answer = client.ask(request);
    } while (answer.find("\"" + vlan + "\"") == std::string::npos);
  }
};

TEST_F(AgentOutput, ThatNobodyReadsHoldsNothingUp) {
  AgentProcess agent(directory, {"slice"});
  EXPECT_EQ(agent.outputUntil("cold start\n"), "cold start\n");
  awaitApplied("10");
  agent.signalIs(SIGTERM);
  agent.awaitEndUnread();
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_THAT(agent.output(), StartsWith("config  + nativeVlan " + longPort(1) + " 10\n"));
  EXPECT_EQ(agent.errors(), "");
}

TEST_F(AgentOutput, IsWholeForALateReaderUpToWhatIsLost) {
  AgentProcess agent(directory, {"slice"});
  agent.outputUntil("cold start\n");
  awaitApplied("10");
  EXPECT_THAT(agent.outputUntil(" lost: could not be written in time\n"),
              HasSubstr("config  + nativeVlan " + longPort(200) + " 10\nconfig  + nativeVlan " +
                        longPort(201) + " 10\n"));
  agent.signalIs(SIGTERM);
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_THAT(agent.output(), EndsWith("ended by SIGTERM\n"));
}

TEST_F(AgentOutput, MayLoseItsReaders) {
  AgentProcess agent(directory, {"--trace", "KestSliceDma/0-9", "slice"});
  agent.outputUntil("cold start\n");
  agent.outputIsClosed();
  agent.errorsAreClosed();
  awaitApplied("10");
  fileIs("slice", nativeVlans(many, 20));
  agent.signalIs(SIGHUP);
  awaitApplied("20");
  agent.signalIs(SIGTERM);
  agent.awaitEndUnread();
  EXPECT_EQ(agent.ended(), 0);
}

TEST_F(AgentOutput, MayLoseItsReadersUnderASupervisor) {
  AgentProcess agent(directory, {"--supervise", "slice"});
  agent.outputUntil("cold start\n");
  agent.outputIsClosed();
  awaitApplied("10");
  agent.signalIs(SIGTERM);
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.errors(), "");
}

TEST_F(AgentOutput, OfErrorsThatNobodyReadsHoldsNothingUp) {
  AgentProcess agent(directory, {"--trace", "KestSliceDma/0-9", "slice"});
  agent.outputUntil("cold start\n");
  agent.outputIsClosed();
  awaitApplied("10");
  agent.signalIs(SIGTERM);
  agent.awaitEndUnread();
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_THAT(agent.errors(), StartsWith("KestSliceDma "));
}

TEST_F(AgentOutput, OnATerminalThatNobodyReadsHoldsNothingUp) {
  AgentProcess agent(directory, {"slice"}, AgentProcess::Output::terminal);
  agent.outputUntil("cold start\n");
  awaitApplied("10");
  agent.signalIs(SIGTERM);
  agent.awaitEndUnread();
  EXPECT_EQ(agent.ended(), 0);
}

}  // namespace
}  // namespace Kest::Agent
