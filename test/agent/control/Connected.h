#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "agent/byname/ControlError.h"
#include "agent/control/Connection.h"
#include "test/agent/control/Client.h"

namespace Kest::Agent {

/// Connections of clients to a server that knows these verbs: `echo` replies with `text`, `later`
/// replies when the test says so, `times` with as many letters as `count` says, `refuse` and `fail`
/// do so.
class Connected : public testing::Test {
 protected:
  struct Pair {
    std::shared_ptr<Connection> connection;
    Client client;
  };

  Pair connected() {
    int ends[2];
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    auto connection = std::make_shared<Connection>(
        loop, Descriptor(ends[0]),
        [this](Connection& from, Json const& what) { serve(from, what); },
        [this](Connection& from) { gone.insert(&from); });
    connection->start();
    return {connection, Client(ends[1])};
  }

  void rounds(int count) {
    for (int i = 0; i < count; ++i) loop.runOnce(0);
  }

  bool isGone(Pair const& pair) const { return gone.contains(pair.connection.get()); }

  static std::string echo(std::string const& text) {
    return R"({"verb":"echo","text":")" + text + "\"}\n";
  }
  static std::string echoed(std::string const& text) {
    return R"({"ok":true,"result":")" + text + "\"}\n";
  }

  Mox::ActivityLoop loop{nullptr};
  int served = 0;
  std::vector<std::function<void(Json)>> replies;  // that wait
  std::set<Connection const*> gone;
  std::function<void()> onEcho = [] {};

 private:
  void serve(Connection& from, Json const& what) {
    ++served;
    std::string const verb = what.at("verb");
    if (verb == "echo") {
      onEcho();
      return from.reply(what.at("text"));
    }
    if (verb == "times") return from.reply(std::string(what.at("count").get<std::size_t>(), 'x'));
    if (verb == "refuse") throw ControlError(Wire::ErrorKind::path, "not there", "here");
    if (verb == "fail") throw std::runtime_error("out of order");
    replies.push_back([weak = from.weak_from_this()](Json result) {
      if (auto const there = weak.lock()) there->reply(std::move(result));
    });
  }
};

}  // namespace Kest::Agent
