#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <csignal>
#include <vector>

#include "test/agent/support/AgentProcess.h"
#include "test/agent/support/AgentSlices.h"
#include "test/agent/support/Client.h"
#include "test/agent/support/ScratchDirectory.h"

namespace Kest::Agent {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

std::string const clean = R"({"ok":true,"result":{"differences":[],"clean":true}})";
std::string const faultsTaken = R"({"ok":true,"result":{}})";

class ControlledAgent : public ScratchDirectory {
 protected:
  /// What a new client is answered.
  std::string ask(std::string const& request) const {
    return Client(directory + "/control.sock").ask(request);
  }
};

/// The text from `from` on; nothing of it is taken for granted.
std::string from(std::string const& text, std::string const& from) {
  std::size_t const at = text.find(from);
  return at == std::string::npos ? "no '" + from + "' in:\n" + text : text.substr(at);
}

/// What the machine does not see while it looks away it must be told before the rest goes.
TEST_F(ControlledAgent, RefusesToReloadAFileThatBreaksTheMachinesRules) {
  fileIs("slice", device("fap0"));
  AgentProcess agent(directory, {"slice"});
  agent.outputUntil("registered=yes state=up\n");
  ask(R"({"verb":"call","handler":"hasNotificationActiveIs","args":[false]})");
  ask(R"({"verb":"del","path":"config/device/fap0"})");
  ask(R"({"verb":"call","handler":"hasNotificationActiveIs","args":[true]})");
  fileIs("slice", "sliceId 'a'\n");
  agent.signalIs(SIGHUP);
  EXPECT_EQ(agent.outputUntil("\n"),
            "not reloaded: device 'fap0' is registered: call handleDevice before its state goes\n");
  EXPECT_THAT(ask(R"({"verb":"get","path":"config/sliceId"})"), HasSubstr(R"("value":"")"));
}

TEST_F(ControlledAgent, RecoversByRestartFromADeviceThatChangesBehindItsBack) {
  AgentProcess agent(
      directory,
      {"--supervise", "--verbose", "--driver-state", "driver.json", examples + "small.slice"},
      AgentProcess::Output::terminal, {{"TERM", "dumb"}});
  EXPECT_THAT(agent.outputUntil("unchanged entries left alone\n"), StartsWith("cold start\n"));
  EXPECT_EQ(ask(R"({"verb":"verify"})"), clean);

  EXPECT_EQ(ask(R"({"verb":"set","path":"sm/mode","text":"polling"})"),
            R"({"ok":true,"result":{"path":"sm/mode","type":"Hardware::Kest::SmMode",)"
            R"("changed":true,"value":"smModePolling"}})");
  EXPECT_EQ(ask(R"({"verb":"get","path":"sm/mode","id":7})"),
            R"({"ok":true,"result":{"path":"sm/mode","type":"Hardware::Kest::SmMode",)"
            R"("value":"smModePolling"},"id":7})");
  EXPECT_EQ(ask(R"({"verb":"set","path":"config/nativeVlan/et1","value":77})"),
            R"({"ok":true,"result":{"path":"config/nativeVlan/et1","type":"U16",)"
            R"("changed":true,"value":77}})");
  EXPECT_EQ(ask(R"({"verb":"get","path":"status/nativeVlan/et1","form":"text"})"),
            R"({"ok":true,"result":{"path":"status/nativeVlan/et1","type":"U16",)"
            R"("value":"77"}})");
  EXPECT_EQ(ask(R"({"verb":"verify"})"), clean);

  EXPECT_EQ(ask(R"({"verb":"driver","action":"flip","device":"fap0"})"), faultsTaken);
  std::string const report = agent.outputUntil("restarted: ");
  std::string const mismatch = "handleTimerExpired: fap0 expected state: up, actual state: down\n";
  std::string const end = from(report, mismatch);
  EXPECT_THAT(end, StartsWith(mismatch + "kest-dma-sim: interfaces 4, devices 1, "));
  // Standard error is a terminal, so the log message is there too.
  EXPECT_THAT(from(end, "KEST_DMA"),
              testing::MatchesRegex("KEST_DMA_DEVICE_STATE_ERROR: fap0 expected state: up, "
                                    "actual state: down\n"
                                    "kest-slice-agent: the agent \\(pid [0-9]+\\) was ended by "
                                    "signal 6 \\(SIGABRT\\); starting it again\n"
                                    "restarted: "));

  EXPECT_THAT(agent.outputUntil("unchanged entries left alone\n"),
              StartsWith("the last run was ended by signal 6 (SIGABRT)\n"));
  EXPECT_EQ(ask(R"({"verb":"verify"})"), clean);
  EXPECT_EQ(ask(R"({"verb":"get","path":"status/nativeVlan/et1"})"),
            R"({"ok":true,"result":{"path":"status/nativeVlan/et1","type":"U16","value":10}})");
  // The simulated chips outlived the agent, as real ones do.
  EXPECT_THAT(ask(R"({"verb":"driver","action":"dump"})"),
              HasSubstr("'fap0', up, flips 1, numFaps 1"));
  agent.signalIs(SIGTERM);
  EXPECT_EQ(agent.ended(), 0);
}

TEST_F(ControlledAgent, UnderALowLimitOfDescriptorsKeepsHalfOfThemForItself) {
  if (sanitizersNeedDescriptors) GTEST_SKIP();
  constexpr std::size_t most = 40;
  AgentProcess agent(directory, {examples + "small.slice"}, AgentProcess::Output::pipes, {}, most);
  agent.outputUntil("left alone\n");
  std::vector<Client> clients;
  for (std::size_t i = 0; i < most / 2; ++i) {
    clients.emplace_back(directory + "/control.sock");
    ASSERT_EQ(clients.back().ask(R"({"verb":"verify"})"), clean) << i;
  }
  Client refused(directory + "/control.sock");
  pollfd reply{refused.fd(), POLLIN, 0};
  ASSERT_EQ(poll(&reply, 1, 60000), 1);
  EXPECT_EQ(refused.received(), R"({"ok":false,"error":{"kind":"busy","message":)"
                                R"("there are 20 connections already: try again later"}})"
                                "\n");
  agent.signalIs(SIGHUP);
  agent.outputUntil("announced 0 changes, ");
  clients.pop_back();
  clients.back().ask(R"({"verb":"verify"})");  // the agent sees who has left before it answers
  EXPECT_EQ(ask(R"({"verb":"verify"})"), clean);
  agent.signalIs(SIGTERM);
  EXPECT_EQ(agent.ended(), 0);
  EXPECT_EQ(agent.errors(), "");
}

TEST_F(ControlledAgent, SaysSoWhenItMayNotHaveTheDescriptorsToStart) {
  if (sanitizersNeedDescriptors) GTEST_SKIP();
  for (std::size_t most = 4; most <= 8; ++most) {
    AgentProcess agent(directory, {examples + "small.slice"}, AgentProcess::Output::pipes, {},
                       most);
    EXPECT_EQ(agent.ended(), 2) << most;
    EXPECT_THAT(agent.errors(), StartsWith("kest-slice-agent: ")) << most;
    EXPECT_THAT(agent.errors(), EndsWith("Too many open files\n")) << most;
  }
}

/// The one port and device of the example, up and served.
class SmallAgent : public ControlledAgent {
 protected:
  SmallAgent() { agent.outputUntil("unchanged entries left alone\n"); }

  // The address sanitizer would report signal 7 as a defect and end the process in its own way.
  AgentProcess agent{directory,
                     {examples + "small.slice"},
                     AgentProcess::Output::pipes,
                     {{"ASAN_OPTIONS", "handle_sigbus=0"}}};
};

TEST_F(SmallAgent, IsEndedByAVerificationThatFails) {
  EXPECT_EQ(ask(R"({"verb":"call","handler":"doVerify"})"),
            R"({"ok":true,"result":{"handler":"sm/doVerify"}})");
  EXPECT_EQ(ask(R"({"verb":"driver","action":"fault","text":"fail kestDmaIfadd * 5 always"})"),
            faultsTaken);
  EXPECT_EQ(ask(R"({"verb":"notify","path":"config/switchPort/et1"})"),
            R"({"ok":true,"result":{"path":"config/switchPort/et1"}})");
  EXPECT_EQ(ask(R"({"verb":"call","handler":"doVerify"})"), "");
  EXPECT_EQ(agent.ended(), -SIGABRT);
  EXPECT_EQ(agent.errors(),
            "kest-slice-agent: KestSliceDmaSm:38: void "
            "Hardware::Kest::Slice::KestSliceDmaSm::doVerify(): Assertion "
            "`status()->switchPort( iterDev->ifName() ).created()' failed.\n");
}

TEST_F(SmallAgent, IsEndedByAPollOfADeviceThatTheDriverDoesNotKnow) {
  EXPECT_EQ(ask(R"({"verb":"driver","action":"fault",)"
                R"("text":"fail kestDmaIsDeviceUp 'fap0' 19 always"})"),
            faultsTaken);
  EXPECT_EQ(ask(R"({"verb":"call","handler":"handleTimerExpired"})"), "");
  EXPECT_EQ(agent.ended(), -7);
  EXPECT_EQ(agent.errors(), "kestDmaIsDeviceUp fap0 returned 19\n");
}

TEST_F(SmallAgent, IsEndedByAPollThatTheDriverDoesNotAnswer) {
  EXPECT_EQ(ask(R"({"verb":"driver","action":"fault",)"
                R"("text":"fail kestDmaIsDeviceUp 'fap0' 5 always"})"),
            faultsTaken);
  EXPECT_EQ(ask(R"({"verb":"call","handler":"handleTimerExpired"})"), "");
  EXPECT_EQ(agent.ended(), -SIGABRT);
  EXPECT_EQ(agent.errors(),
            "kestDmaIsDeviceUp fap0 returned 5\n"
            "kest-slice-agent: KestSliceDmaSm:97: void "
            "Hardware::Kest::Slice::KestSliceDmaSm::handleTimerExpired(): Assertion `false' "
            "failed.\n");
}

}  // namespace
}  // namespace Kest::Agent
