#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <vector>

#include "bench/Run.h"
#include "bench/Socket.h"

/// Row r: requests of one client to the agent, and to a Redis server that does the same work. Each
/// row has its connections open before it is measured. Every reply is compared with what it has to
/// be, byte by byte.
namespace Kest::Bench {

namespace {

constexpr std::size_t pipelined = 64;
constexpr std::size_t ports = 16;

/// The port that a request of a batch is about; all have names of one length, so that messages
/// about them are alike.
std::string portOf(std::size_t request) {
  return "et3/" + std::to_string(10 + request % ports);
}

/// Which native VLAN it gets: another one than the port has.
std::string vlanOf(std::size_t batch, std::size_t request) {
  return std::to_string(100 + batch % 2 * 4 + request / ports);
}

char const* path(char const* variable) {
  char const* const value = std::getenv(variable);
  if (value == nullptr) throw std::runtime_error(std::string(variable) + " is not set");
  return value;
}

/// The agent: its own driver, state machine and status do a change's turn.
class Agent {
 public:
  static constexpr char const* name = "ours";

  Agent(std::size_t /*changes*/, bool isTold) {
    if (!isTold) return;
    told_ = std::make_unique<Socket>(path("KEST_BENCH_AGENT"));
    told_->ask("{\"verb\":\"watch\"}\n");
  }

  static std::string read() {
    return R"({"verb":"get","path":"config/switchPort/)" + portOf(0) + "\"}\n";
  }
  static std::string change(std::string const& port, std::string const& vlan) {
    return R"({"verb":"set","path":"config/nativeVlan/)" + port + R"(","value":)" + vlan + "}\n";
  }
  static std::string status() {
    return R"({"verb":"get","path":"status/nativeVlan/)" + portOf(0) + "\"}\n";
  }

  Socket& client() { return client_; }
  /// What tells of changes; null when nobody asked.
  Socket* told() { return told_.get(); }

 private:
  Socket client_{path("KEST_BENCH_AGENT")};
  std::unique_ptr<Socket> told_;
};

/// A command as Redis reads it.
std::string command(std::vector<std::string> const& words) {
  std::string text = "*" + std::to_string(words.size()) + "\r\n";
  for (std::string const& word : words) {
    text += "$" + std::to_string(word.size()) + "\r\n" + word + "\r\n";
  }
  return text;
}

/// The same on Redis, as its users would have it: the records are hashes, and whoever changes one
/// says so on a channel. A process of its own stands for the state machine.
class Redis {
 public:
  static constexpr char const* name = "redis";

  /// A change is over when the status has been announced; whoever is told hears of the
  /// configuration too.
  Redis(std::size_t changes, bool isTold) {
    std::string records;
    for (std::size_t request = 0; request < ports; ++request) {
      std::string const number = std::to_string(110 + request);
      records += command({"HSET",         "config:" + portOf(request),
                          "ifName",       portOf(request),
                          "destId",       number,
                          "shadowIntfId", "4096",
                          "trafficClass", "0",
                          "devName",      "fap3/0",
                          "fapNum",       "1",
                          "ctrl",         "true",
                          "hwLag",        "false",
                          "macAddr",      "00:1c:73:03:00:0a",
                          "nativeVlan",   "100"});
    }
    client_.ask(records);
    if (changes == 0) return;
    handler_ = fork();
    if (handler_ == 0) handleChanges();
    auto const isHandled = [this] {
      return client_.ask(command({"PUBSUB", "NUMSUB", "config"})).find(":1") != std::string::npos;
    };
    while (!isHandled()) {
    }
    told_ = std::make_unique<Socket>(path("KEST_BENCH_REDIS"));
    told_->ask(isTold ? command({"SUBSCRIBE", "config", "status"})
                      : command({"SUBSCRIBE", "status"}));
  }
  ~Redis() {
    if (handler_ <= 0) return;
    kill(handler_, SIGKILL);
    waitpid(handler_, nullptr, 0);
  }
  Redis(Redis const&) = delete;
  Redis& operator=(Redis const&) = delete;

  static std::string read() { return command({"HGETALL", "config:" + portOf(0)}); }
  static std::string change(std::string const& port, std::string const& vlan) {
    return command({"HSET", "config:" + port, "nativeVlan", vlan}) +
           command({"PUBLISH", "config", port});
  }
  static std::string status() { return command({"HGET", "status:" + portOf(0), "nativeVlan"}); }

  Socket& client() { return client_; }
  Socket* told() { return told_.get(); }

 private:
  /// Reads each record that has changed, and writes down what its status is. As many changes as
  /// have come are handled together.
  [[noreturn]] static void handleChanges() {
    std::string const head = command({"message", "config", portOf(0)});
    Socket messages(path("KEST_BENCH_REDIS"));
    Socket commands(path("KEST_BENCH_REDIS"));
    std::size_t const recordBytes = commands.ask(read()).size();
    messages.ask(command({"SUBSCRIBE", "config"}));
    for (;;) {
      std::size_t const count = (messages.waiting() + head.size() - 1) / head.size();
      std::string const changed(messages.receive(count * head.size()));
      std::string reads;
      std::vector<std::string> names;
      for (std::size_t i = 0; i < count; ++i) {
        std::size_t const end = (i + 1) * head.size() - 2;
        names.push_back(changed.substr(end - portOf(0).size(), portOf(0).size()));
        reads += command({"HGETALL", "config:" + names.back()});
      }
      commands.send(reads);
      std::string const records(commands.receive(count * recordBytes));
      std::string writes;
      for (std::size_t i = 0; i < count; ++i) {
        std::string const vlan = records.substr((i + 1) * recordBytes - 5, 3);
        writes += command({"HSET", "status:" + names[i], "nativeVlan", vlan}) +
                  command({"PUBLISH", "status", names[i]});
      }
      commands.send(writes);
      commands.receive(count * std::string_view(":0\r\n:1\r\n").size());
    }
  }

  Socket client_{path("KEST_BENCH_REDIS")};
  std::unique_ptr<Socket> told_;
  pid_t handler_ = -1;
};

void expectSame(Run& run, std::string_view expected, std::string_view found) {
  if (found != expected)
    run.fail("expected " + std::string(expected) + "found " + std::string(found));
}

template <class Server>
void readRecord(Run& run) {
  Server server(0, false);
  std::string const request = Server::read();
  std::string const reply = server.client().ask(request);
  run.repeat([&] {
    server.client().send(request);
    expectSame(run, reply, server.client().receive(reply.size()));
  });
  if (reply.find("00:1c:73:03:00:0a") == std::string::npos) run.fail("found " + reply);
}

/// So many changes in one write, each over when its status has been written.
template <class Server>
void changeRecords(Run& run, std::size_t changes, bool isTold) {
  Server server(changes, isTold);
  std::array<std::string, 2> requests;
  std::array<std::string, 2> replies;
  std::array<std::string, 2> events;
  bool isFirst = true;  // which may change nothing, and then tells nothing
  for (std::size_t batch : {0U, 1U, 0U, 1U}) {
    requests[batch].clear();
    for (std::size_t i = 0; i < changes; ++i) {
      requests[batch] += Server::change(portOf(i), vlanOf(batch, i));
    }
    replies[batch] = server.client().ask(requests[batch]);
    if (server.told() != nullptr && !isFirst) events[batch] = server.told()->receiveAll();
    isFirst = false;
  }
  std::size_t batch = 0;
  run.repeat([&] {
    server.client().send(requests[batch]);
    expectSame(run, replies[batch], server.client().receive(replies[batch].size()));
    if (server.told() != nullptr) {
      expectSame(run, events[batch], server.told()->receive(events[batch].size()));
    }
    batch = 1 - batch;
  });
  run.operationsAre(changes);
  std::string const status = server.client().ask(Server::status());
  std::size_t const last = (changes - 1) / ports * ports;
  if (status.find(vlanOf(1 - batch, last)) == std::string::npos) run.fail("found " + status);
}

template <class Server>
void measureServer() {
  measure("r", "read", Server::name, readRecord<Server>, Time::passing);
  measure(
      "r", "change", Server::name, [](Run& run) { changeRecords<Server>(run, 1, false); },
      Time::passing);
  measure(
      "r", "told", Server::name, [](Run& run) { changeRecords<Server>(run, 1, true); },
      Time::passing);
  measure(
      "r", "pipelined", Server::name,
      [](Run& run) { changeRecords<Server>(run, pipelined, false); }, Time::passing);
}

}  // namespace

void measureRequests() {
  measureServer<Agent>();
  measureServer<Redis>();
}

}  // namespace Kest::Bench
