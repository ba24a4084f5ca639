#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "agent/access/ControlError.h"
#include "agent/control/Connection.h"
#include "platform/mox/Time.h"
#include "test/agent/support/Client.h"

namespace Kest::Agent {

/// Connections of clients to a server that knows these verbs: `echo` replies with `text`, `later`
/// replies when the test says so, `times` with as many letters as `count` says, `pieces` with as
/// many pieces of a list as `count` says, `upload` with how many bytes have followed the request,
/// while it holds as much memory as `held` says; `refuse`, `fail` and `starve` (for a lack of
/// memory) do so. Time stands still unless it is moved.
class Connected : public testing::Test {
 protected:
  struct Pair {
    std::shared_ptr<Connection> connection;
    Client client;
  };

  Connected() { Mox::timeSourceIs(&time); }
  ~Connected() override { Mox::timeSourceIs(nullptr); }

  Pair connected(bool mayChange = true) {
    int ends[2];
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    auto connection = std::make_shared<Connection>(
        turns, account, Text::Descriptor(ends[0]), Peer{geteuid(), mayChange},
        [this](Connection& from, Json const& what) { return serve(from, what); },
        [this](Connection& from) { gone.insert(&from); });
    connection->start();
    return {connection, Client(ends[1])};
  }

  void rounds(int count) {
    for (int i = 0; i < count; ++i) loop.runOnce(0);
  }

  /// Sends everything while the loop runs.
  void sendAll(Client const& client, std::string_view bytes) {
    while (!bytes.empty()) {
      bytes.remove_prefix(client.sendSome(bytes));
      rounds(1);
    }
  }

  /// Reads while the loop runs, until nothing more comes.
  std::string readAll(Client& client) {
    std::string all;
    for (int quiet = 0; quiet < 20; ++quiet) {
      rounds(1);
      std::string const more = client.received();
      if (!more.empty()) quiet = 0;
      all += more;
    }
    return all;
  }

  bool isGone(Pair const& pair) const { return gone.contains(pair.connection.get()); }

  static std::string echo(std::string const& text) {
    return R"({"verb":"echo","text":")" + text + "\"}\n";
  }
  static std::string echoed(std::string const& text) {
    return R"({"ok":true,"result":")" + text + "\"}\n";
  }
  static std::string refused(std::string const& message) {
    return R"({"ok":false,"error":{"kind":"request","message":")" + message + "\"}}\n";
  }

  Mox::ManualTimeSource time;
  ActivityLoop loop{nullptr};
  Turns turns{loop};
  Account account{std::size_t{1} << 30, [this] { onExceeded(); }};
  int served = 0;
  std::vector<std::function<void(Json)>> replies;  // that wait
  std::set<Connection const*> gone;
  std::function<void()> onEcho = [] {};
  std::function<void()> onExceeded = [] {};

  static constexpr std::size_t pieceBytes = 10000;

 private:
  /// `["xx...",...]`, an element a piece; the last one is refused or lacks memory if it is told to.
  class Pieces final : public LongResult {
   public:
    explicit Pieces(Json const& what) : count_(what.at("count")), end_(what.value("end", "good")) {}

    Progress goOn(std::string& text) override {
      if (told_ == count_) return atEnd(text);
      text += (told_++ == 0 ? "[\"" : ",\"") + std::string(pieceBytes, 'x') + "\"";
      return Progress::more;
    }

   private:
    Progress atEnd(std::string& text) const {
      if (end_ == "starved") throw std::bad_alloc();
      if (end_ == "refused") throw ControlError(Wire::ErrorKind::busy, "not now");
      if (end_ == "later") return Progress::later;
      text += told_ == 0 ? "[]" : "]";
      return Progress::done;
    }

    std::size_t count_;
    std::string end_;
    std::size_t told_ = 0;
  };

  /// Refuses a `!`; ends with what is asked for in `end`.
  class Counted final : public Upload {
   public:
    explicit Counted(Json const& what)
        : end_(what.value("end", Json("count"))), held_(what.value("held", std::size_t{0})) {}

    std::size_t held() const override { return held_; }
    void take(std::string_view bytes) override {
      if (bytes.find('!') != bytes.npos) throw ControlError(Wire::ErrorKind::file, "a '!'");
      count_ += bytes.size();
    }
    Answer end() override {
      if (end_ == "count") return Json(count_);
      return std::make_unique<Pieces>(Json{{"count", 2}});
    }

   private:
    Json end_;
    std::size_t held_;
    std::size_t count_ = 0;
  };

  Answer serve(Connection& from, Json const& what) {
    ++served;
    std::string const verb = what.at("verb");
    if (verb == "echo") {
      onEcho();
      return what.at("text");
    }
    if (verb == "times") return Json(std::string(what.at("count").get<std::size_t>(), 'x'));
    if (verb == "upload") return std::make_unique<Counted>(what);
    if (verb == "refuse") throw ControlError(Wire::ErrorKind::path, "not there", "here");
    if (verb == "fail") throw std::runtime_error("out of order");
    if (verb == "starve") throw std::bad_alloc();
    replies.push_back([weak = from.weak_from_this()](Json const& result) {
      if (auto const there = weak.lock()) there->reply(result);
    });
    if (verb == "pieces") return std::make_unique<Pieces>(what);
    return std::monostate();
  }
};

}  // namespace Kest::Agent
