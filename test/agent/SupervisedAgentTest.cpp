#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <system_error>

#include "test/agent/support/AgentProcess.h"
#include "test/agent/support/AgentSlices.h"
#include "test/agent/support/NotifySocket.h"
#include "test/agent/support/ScratchDirectory.h"

namespace Kest::Agent {
namespace {

void signalTo(pid_t process, int number) {
  if (kill(process, number) != 0) throw std::system_error(errno, std::generic_category(), "kill");
}

class SupervisedAgent : public ScratchDirectory {
 protected:
  SupervisedAgent() { fileIs("slice", "sliceId 'Linecard1'\n"); }

  /// The agent that a supervisor has started.
  static pid_t childOf(pid_t supervisor) {
    std::string const process = std::to_string(supervisor);
    pid_t child = -1;
    std::ifstream("/proc/" + process + "/task/" + process + "/children") >> child;
    if (child <= 0) throw std::runtime_error("no child of process " + process);
    return child;
  }

  static constexpr char const* applied =
      "config  ~ sliceId 'Linecard1'\n"
      "slice: announced 1 change, 0 unchanged entries left alone\n";
};

TEST_F(SupervisedAgent, ComesAgainAfterAnAbortAndSaysSo) {
  AgentProcess agent(directory, {"--supervise", "slice"});
  EXPECT_EQ(agent.outputUntil("left alone\n"), std::string("cold start\n") + applied);
  pid_t const first = childOf(agent.pid());
  signalTo(first, SIGABRT);
  EXPECT_EQ(agent.outputUntil("left alone\n"),
            std::string("restarted: the last run was ended by signal 6 (SIGABRT)\n") + applied);
  EXPECT_NE(childOf(agent.pid()), first);

  fileIs("slice", "sliceId 'Linecard2'\n");
  agent.signalIs(SIGHUP);
  agent.outputUntil("config  ~ sliceId 'Linecard2'\n");
  agent.outputUntil("left alone\n");
  agent.signalIs(SIGTERM);
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.output(), "ended by SIGTERM\n");
  EXPECT_EQ(agent.errors(), "kest-slice-agent: the agent (pid " + std::to_string(first) +
                                ") was ended by signal 6 (SIGABRT); starting it again\n");
}

TEST_F(SupervisedAgent, ComesAgainAfterAnEndThatNobodyForesaw) {
  if (sanitizersNeedDescriptors) GTEST_SKIP();
  AgentProcess agent(directory, {"--supervise", "slice"});
  agent.outputUntil("left alone\n");
  rlimit const none{0, 0};
  ASSERT_EQ(prlimit(childOf(agent.pid()), RLIMIT_NOFILE, &none, nullptr), 0);
  agent.signalIs(SIGHUP);
  agent.outputUntil("restarted: the last run was ended by signal 6 (SIGABRT)\n");
  agent.outputUntil("left alone\n");
  agent.signalIs(SIGTERM);
  EXPECT_EQ(agent.ended(), 0);
}

/// It would otherwise keep the next agent from the control socket for as long as its driver asks to
/// be tried again.
TEST_F(SupervisedAgent, EndsWithItsSupervisorWhileItWaitsForItsDriver) {
  fileIs("slice", port(1));
  fileIs("faults", "fail kestDmaIfadd 'et1' 11 times 20\n");
  AgentProcess agent(directory, {"--supervise", "slice", "--driver-faults", "faults"});
  agent.outputUntil("config  + switchPort et1\n");
  agent.signalIs(SIGKILL);
  EXPECT_EQ(agent.ended(), -SIGKILL);
  EXPECT_EQ(agent.output(), "");
  EXPECT_EQ(agent.errors(), "");
}

TEST_F(SupervisedAgent, IsNotStartedAgainWhenItEndsByItself) {
  AgentProcess done(directory, {"--supervise", "--once", "slice"});
  EXPECT_EQ(done.ended(), 0);
  EXPECT_EQ(done.output(), std::string("cold start\n") + applied);
  EXPECT_EQ(done.errors(), "");

  AgentProcess refused(directory, {"--supervise", "missing"});
  EXPECT_EQ(refused.ended(), 2);
  EXPECT_EQ(refused.output(), "");
  EXPECT_EQ(refused.errors(),
            "kest-slice-agent: missing: cannot be read: No such file or directory\n");
}

TEST_F(SupervisedAgent, EndsOnceWhenItsWholeProcessGroupIsToldTo) {
  AgentProcess agent(directory, {"--supervise", "--verbose", "slice"},
                     AgentProcess::Output::terminal, {{"TERM", "dumb"}});
  agent.outputUntil("left alone\n");
  signalTo(-agent.pid(), SIGINT);
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.output(), "ended by SIGINT\n");
}

TEST_F(SupervisedAgent, ObeysTheFirstOfTwoSignalsThatEndIt) {
  AgentProcess agent(directory, {"slice"});
  agent.outputUntil("left alone\n");
  agent.signalIs(SIGSTOP);
  int status = 0;
  ASSERT_EQ(waitpid(agent.pid(), &status, WUNTRACED), agent.pid());
  ASSERT_TRUE(WIFSTOPPED(status));
  // Both wait for it when it goes on; the system hands out the lower number first.
  for (int const signal : {SIGTERM, SIGINT, SIGCONT}) agent.signalIs(signal);
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.output(), "ended by SIGINT\n");
}

TEST_F(SupervisedAgent, IsToldOfItsLastEndByAnyServiceManager) {
  AgentProcess agent(directory, {"--once", "slice"}, AgentProcess::Output::pipes,
                     {{"KEST_LAST_END", "SIGBUS"}});
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.output(), std::string("restarted: the last run was ended by SIGBUS\n") + applied);
}

TEST_F(SupervisedAgent, TellsItsServiceManagerThatItServesAndThatItLives) {
  NotifySocket const socket(directory + "/notify");
  AgentProcess agent(directory, {"slice"}, AgentProcess::Output::pipes,
                     {{"NOTIFY_SOCKET", "notify"}, {"WATCHDOG_USEC", "30000000"}});
  EXPECT_EQ(socket.told(), "READY=1");
  EXPECT_EQ(socket.told(), "WATCHDOG=1");
  agent.outputUntil("left alone\n");
  fileIs("slice", port(1));
  agent.signalIs(SIGHUP);
  EXPECT_EQ(socket.told(), "WATCHDOG=1");  // before a call to the driver, too
  agent.signalIs(SIGTERM);
  EXPECT_EQ(agent.ended(), 0);
}

TEST_F(SupervisedAgent, TakesAnEmptyLastEndForNone) {
  AgentProcess agent(directory, {"--once", "slice"}, AgentProcess::Output::pipes,
                     {{"KEST_LAST_END", ""}});
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.output(), applied);
}

}  // namespace
}  // namespace Kest::Agent
