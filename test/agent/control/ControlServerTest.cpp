#include "agent/control/ControlServer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <memory>

#include "test/agent/support/Client.h"
#include "test/agent/support/DescriptorLimit.h"
#include "test/agent/support/ServedAgent.h"
#include "test/support/Files.h"

namespace Kest::Agent {
namespace {

class ControlServerTest : public ServedAgent {
 protected:
  ControlServerTest() {
    chmod(scratch.path().c_str(), 0711);
    served.apply = [this](std::string const&, Slice, std::function<void(Applied)> done) {
      applied.push_back(std::move(done));
    };
    server = std::make_unique<ControlServer>(loop, path, served, SocketAccess{0666, ""});
  }

  void rounds(int count) {
    for (int i = 0; i < count; ++i) loop.runOnce(0);
  }

  std::string ask(Client& client, std::string const& request) {
    client.send(request + "\n");
    rounds(1);
    return client.received();
  }

  /// A client that runs as that user; for root alone.
  std::unique_ptr<Client> clientOf(uid_t user) const {
    EXPECT_EQ(seteuid(user), 0);
    std::unique_ptr<Client> client;
    EXPECT_NO_THROW(client = std::make_unique<Client>(path));
    EXPECT_EQ(seteuid(0), 0);
    return client;
  }

  /// Time passes for the clients.
  void passes(double seconds) {
    constexpr double micro = 1e6;
    time.advance(static_cast<std::int64_t>(seconds * micro));
    Mox::activityManager()->clock()->dispatch();
  }

  /// A request for the differences to a file whose bytes follow it.
  static std::string diffOf(std::size_t bytes) {
    return R"({"verb":"diff","file":"a.slice","bytes":)" + std::to_string(bytes) + "}\n";
  }

  static constexpr char const* applyRequest =
      R"({"verb":"apply","file":"a.slice","content":"sliceId 'Linecard1'\n"})";
  static constexpr char const* getSlice = R"({"verb":"get","path":"config/sliceId"})";
  static constexpr char const* theSlice =
      R"({"ok":true,"result":{"path":"config/sliceId","type":"Mox::String","value":"Linecard1"}})"
      "\n";
  static constexpr char const* setSlice =
      R"({"verb":"set","path":"config/sliceId","value":"Linecard2"})";

  Support::TempFolder scratch;
  std::string path = scratch.file("agent.sock");
  DescriptorLimit limit;
  ActivityLoop loop{nullptr};
  std::vector<std::function<void(Applied)>> applied;  // that wait
  std::unique_ptr<ControlServer> server;
};

TEST_F(ControlServerTest, AClientBeyondTheBoundIsToldSo) {
  if (!limit.is(2 * Wire::mostConnections + 100)) GTEST_SKIP() << "too few descriptors";
  std::vector<Client> clients;
  for (std::size_t i = 0; i < Wire::mostConnections; ++i) {
    clients.emplace_back(path);
    if (i % 64 == 0) rounds(1);
  }
  rounds(10);
  ASSERT_EQ(server->connections(), Wire::mostConnections);
  Client oneMore(path);
  rounds(1);
  EXPECT_TRUE(oneMore.isEnded());
  EXPECT_EQ(oneMore.received(), R"({"ok":false,"error":{"kind":"busy","message":)"
                                R"("there are 1000 connections already: try again later"}})"
                                "\n");
  EXPECT_EQ(ask(clients.back(), getSlice), theSlice);
  clients.pop_back();
  rounds(2);
  Client again(path);
  rounds(1);
  EXPECT_EQ(ask(again, getSlice), theSlice);
}

TEST_F(ControlServerTest, WithoutDescriptorsClientsAreTurnedAwayAndTheOthersServed) {
  Client kept(path);
  rounds(1);
  Client turnedAway(path);
  limit.isReached();
  rounds(1);
  EXPECT_TRUE(turnedAway.isEnded());
  EXPECT_EQ(turnedAway.received(), R"({"ok":false,"error":{"kind":"busy","message":)"
                                   R"("the agent has no file descriptors left: try again later"}})"
                                   "\n");
  EXPECT_EQ(ask(kept, getSlice), theSlice);
  EXPECT_EQ(server->connections(), 1U);
}

TEST_F(ControlServerTest, WhereTheSystemLetsNobodyInTheyWaitAndTheLoopDoesNotSpin) {
  Client waiting(path);
  ASSERT_TRUE(limit.is(3));  // not even the spare descriptor comes back
  rounds(1);
  limit.restore();
  rounds(3);
  EXPECT_EQ(server->connections(), 0U);  // nobody looks
  passes(1);
  rounds(1);
  EXPECT_EQ(ask(waiting, getSlice), theSlice);
}

TEST_F(ControlServerTest, ASilentClientIsToldSoAndEnded) {
  Client silent(path);
  Client asking(path);
  Client watching(path);
  Client waiting(path);
  rounds(1);
  ask(watching, R"({"verb":"watch"})");
  ask(waiting, applyRequest);
  passes(Wire::longestSilence - 1);
  EXPECT_EQ(ask(asking, getSlice), theSlice);
  EXPECT_EQ(server->connections(), 4U);
  passes(1);
  EXPECT_EQ(server->connections(), 3U);
  EXPECT_TRUE(silent.isEnded());
  EXPECT_EQ(silent.received(), R"({"ok":false,"error":{"kind":"busy","message":)"
                               R"("the connection was silent for too long"}})"
                               "\n");
  passes(Wire::longestSilence - 1);
  EXPECT_TRUE(asking.isEnded());
  applied.at(0)({});
  rounds(2);
  EXPECT_NE(waiting.received(), "");
  passes(2 * Wire::longestSilence);
  EXPECT_TRUE(waiting.isEnded());
  EXPECT_EQ(server->connections(), 1U);
  EXPECT_FALSE(watching.isEnded());
}

TEST_F(ControlServerTest, AWatcherSeesEveryChangeInOrder) {
  Client watching(path);
  Client setting(path);
  rounds(1);
  EXPECT_EQ(ask(watching, R"({"verb":"watch","id":1})"),
            "{\"ok\":true,\"result\":{\"watching\":true},\"id\":1}\n");
  ask(setting, setSlice);
  rounds(1);
  EXPECT_EQ(watching.received(),
            R"({"event":"change","path":"config/sliceId","type":"Mox::String",)"
            R"("value":"Linecard2"})"
            "\n");
  EXPECT_EQ(setting.received(), "");
  watching.close();
  rounds(2);
  EXPECT_EQ(server->connections(), 1U);
}

TEST_F(ControlServerTest, OthersThanRootAndTheAgentsUserMayOnlyRead) {
  if (geteuid() != 0) GTEST_SKIP() << "not root";
  constexpr uid_t nobody = 65534;
  std::unique_ptr<Client> const other = clientOf(nobody);
  rounds(1);
  EXPECT_EQ(ask(*other, setSlice),
            R"({"ok":false,"error":{"kind":"denied","message":)"
            R"("'set' changes the agent or holds it up: only root and the agent's user may"}})"
            "\n");
  EXPECT_EQ(ask(*other, getSlice), theSlice);
}

/// It counts for more memory than all readers may hold, and costs none of them the connection.
TEST_F(ControlServerTest, WhoMayChangeSendsAFileOfAnySize) {
  bool const isRoot = geteuid() == 0;
  std::unique_ptr<Client> const reader = isRoot ? clientOf(1000) : nullptr;
  Client client(path);
  std::string const line = "# " + std::string(1000, 'x') + "\n";
  constexpr std::size_t lines = 3000;
  client.send(diffOf(lines * line.size()));
  for (std::size_t i = 0; i < lines; ++i) {
    client.send(line);
    rounds(3);
  }
  rounds(100);
  std::string const answer = client.received();
  EXPECT_TRUE(answer.starts_with(R"({"ok":true,"result":{"steps":["~ sliceId)")) << answer;
  EXPECT_FALSE(isRoot && reader->isEnded());
}

TEST_F(ControlServerTest, WhoHoldsMostGoesWhenReadersHoldTooMuch) {
  if (geteuid() != 0) GTEST_SKIP() << "not root";
  constexpr std::size_t count = 40;
  Client root(path);
  std::unique_ptr<Client> const small = clientOf(1000);
  small->send("{");
  // Files that have not come whole: each counts for about a mebibyte.
  std::string const half = diffOf(60001) + std::string(60000, '\n');
  std::vector<std::unique_ptr<Client>> large;
  for (std::size_t i = 0; i < count; ++i) {
    large.push_back(clientOf(1000));
    large.back()->send(half);
    rounds(10);
  }
  std::size_t kept = 0;
  for (auto const& client : large) {
    if (!client->isEnded()) {
      ++kept;
      continue;
    }
    EXPECT_EQ(client->received(),
              R"({"ok":false,"error":{"kind":"busy","message":)"
              R"("clients hold too much of the agent's memory, and this one most of it"}})"
              "\n");
  }
  EXPECT_GE(kept, 10U);
  EXPECT_LE(kept, 17U);
  EXPECT_FALSE(small->isEnded());
  EXPECT_EQ(ask(root, getSlice), theSlice);
}

TEST_F(ControlServerTest, AUserTakesAFewPlacesAndRootStillGetsOne) {
  if (geteuid() != 0) GTEST_SKIP() << "not root";
  std::vector<std::unique_ptr<Client>> clients;
  for (std::size_t i = 0; i <= Wire::mostConnectionsOfUser; ++i) clients.push_back(clientOf(1000));
  rounds(10);
  EXPECT_EQ(server->connections(), Wire::mostConnectionsOfUser);
  EXPECT_EQ(clients.back()->received(),
            R"({"ok":false,"error":{"kind":"busy","message":)"
            R"("there are 64 connections of user 1000 already: try again later"}})"
            "\n");
  clients.erase(clients.begin());
  rounds(1);
  std::unique_ptr<Client> again = clientOf(1000);
  Client root(path);
  rounds(1);
  EXPECT_EQ(ask(*again, getSlice), theSlice);
  EXPECT_EQ(ask(root, getSlice), theSlice);
}

TEST_F(ControlServerTest, AnApplyIsAnsweredWhenItIsDone) {
  Client client(path);
  rounds(1);
  EXPECT_EQ(ask(client, applyRequest + ("\n" + std::string(getSlice))), "");
  ASSERT_EQ(applied.size(), 1U);
  applied[0]({1, 2, {"port et3/1"}});
  rounds(1);
  EXPECT_EQ(client.received(),
            R"({"ok":true,"result":{"announced":1,"unchanged":2,"notUp":["port et3/1"]}})"
            "\n" +
                std::string(theSlice));
}

TEST_F(ControlServerTest, AnApplyMayBeDoneAfterItsClientAndItsServerAreGone) {
  Client leaving(path);
  Client staying(path);
  rounds(1);
  ask(leaving, applyRequest);
  ask(staying, applyRequest);
  ASSERT_EQ(applied.size(), 2U);
  leaving.close();
  applied[0]({});
  rounds(2);
  EXPECT_EQ(server->connections(), 1U);
  server.reset();
  EXPECT_TRUE(staying.isEnded());
  applied[1]({});
  EXPECT_EQ(staying.received(), "");
}

}  // namespace
}  // namespace Kest::Agent
