#include "agent/control/ControlServer.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <memory>

#include "test/agent/ScratchDirectory.h"
#include "test/agent/byname/ServedAgent.h"
#include "test/agent/control/Client.h"

namespace Kest::Agent {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Scratch : ScratchDirectory {
  using ScratchDirectory::directory;
  void TestBody() override {}
};

/// The limit of open descriptors, as it was before again at the end.
class DescriptorLimit {
 public:
  DescriptorLimit() { getrlimit(RLIMIT_NOFILE, &before_); }
  ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &before_); }
  bool is(rlim_t soft) const {
    rlimit const wanted{soft, before_.rlim_max};
    return setrlimit(RLIMIT_NOFILE, &wanted) == 0;
  }

 private:
  rlimit before_{};
};

class ControlServerTest : public ServedAgent {
 protected:
  ControlServerTest() {
    chmod(scratch.directory.c_str(), 0711);
    served.apply = [this](std::string const&, Slice, std::function<void(Applied)> done) {
      applied.push_back(std::move(done));
    };
    server = std::make_unique<ControlServer>(loop, path, served);
  }

  void rounds(int count) {
    for (int i = 0; i < count; ++i) loop.runOnce(0);
  }

  std::string ask(Client& client, std::string const& request) {
    client.send(request + "\n");
    rounds(1);
    return client.received();
  }

  static constexpr char const* getSlice = R"({"verb":"get","path":"config/sliceId"})";
  static constexpr char const* theSlice =
      R"({"ok":true,"result":{"path":"config/sliceId","type":"Mox::String","value":"Linecard1"}})"
      "\n";
  static constexpr char const* setSlice =
      R"({"verb":"set","path":"config/sliceId","value":"Linecard2"})";

  Scratch scratch;
  std::string path = scratch.directory + "/agent.sock";
  DescriptorLimit limit;
  Mox::ActivityLoop loop{nullptr};
  std::vector<std::function<void(Applied)>> applied;  // that wait
  std::unique_ptr<ControlServer> server;
};

TEST_F(ControlServerTest, ServesFiveHundredClientsAtOnce) {
  constexpr std::size_t count = 500;
  if (!limit.is(2 * count + 100)) GTEST_SKIP() << "too few descriptors";
  std::vector<Client> clients;
  for (std::size_t i = 0; i < count; ++i) {
    clients.emplace_back(path);
    clients.back().send(std::string(getSlice) + "\n");
    if (i % 64 == 0) rounds(1);
  }
  rounds(10);
  EXPECT_EQ(server->connections(), count);
  for (Client& client : clients) ASSERT_EQ(client.received(), theSlice);
  clients.clear();
  rounds(3);
  EXPECT_EQ(server->connections(), 0U);
}

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
  int const free = dup(0);
  close(free);
  ASSERT_TRUE(limit.is(static_cast<rlim_t>(free)));
  rounds(1);
  EXPECT_TRUE(turnedAway.isEnded());
  EXPECT_EQ(ask(kept, getSlice), theSlice);
  EXPECT_EQ(server->connections(), 1U);
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
  ASSERT_EQ(seteuid(nobody), 0);
  std::unique_ptr<Client> other;
  EXPECT_NO_THROW(other = std::make_unique<Client>(path));
  ASSERT_EQ(seteuid(0), 0);
  rounds(1);
  EXPECT_EQ(ask(*other, setSlice),
            R"({"ok":false,"error":{"kind":"denied","message":)"
            R"("'set' changes the agent: only root and the agent's user may"}})"
            "\n");
  EXPECT_EQ(ask(*other, getSlice), theSlice);
}

TEST_F(ControlServerTest, AnApplyIsAnsweredWhenItIsDone) {
  Client client(path);
  rounds(1);
  std::string const request =
      R"({"verb":"apply","file":"a.slice","content":"sliceId 'Linecard1'\n"})";
  EXPECT_EQ(ask(client, request + "\n" + getSlice), "");
  ASSERT_EQ(applied.size(), 1U);
  applied[0]({1, 2, {"port et3/1"}});
  rounds(1);
  EXPECT_EQ(client.received(),
            R"({"ok":true,"result":{"announced":1,"unchanged":2,"notUp":["port et3/1"]}})"
            "\n" +
                std::string(theSlice));
}

TEST_F(ControlServerTest, AnApplyMayBeDoneAfterItsClientAndItsServerAreGone) {
  std::string const request =
      R"({"verb":"apply","file":"a.slice","content":"sliceId 'Linecard1'\n"})";
  Client leaving(path);
  Client staying(path);
  rounds(1);
  ask(leaving, request);
  ask(staying, request);
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
