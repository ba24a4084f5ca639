#pragma once

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "test/fuzz/Fuzz.h"
#include "test/support/SocketClient.h"

namespace Fuzz {

using nlohmann::json;

/// A client of the control socket. It counts what it asks and checks what it gets: for each line
/// one reply, in order.
class FuzzedClient {
 public:
  explicit FuzzedClient(std::string const& path) : client_(path) {}

  /// At most `most` bytes of it; returns how many.
  std::size_t send(std::string_view bytes, std::size_t most) const {
    return client_.sendSome(bytes.substr(0, most));
  }
  void asked(json id) { ids_.push_back(std::move(id)); }
  void end() const { client_.halfClose(); }

  /// Takes what has come.
  void receive() {
    ended_ = client_.isEnded();
    for (std::string const& line : client_.lines()) take(line);
  }
  bool hasAllReplies() const { return replies_ == ids_.size(); }
  bool isEnded() const { return ended_; }

 private:
  void take(std::string_view line) {
    json const message = json::parse(line, nullptr, false);
    require(message.is_object(), "what comes is an object", line);
    if (message.contains("event")) return;
    require(!hasAllReplies(), "nobody replies unasked", line);
    json const ok = message.value("ok", json());
    require(ok.is_boolean(), "a reply says whether it is good", line);
    if (ok == false) requireError(message.at("error"), line);
    if (ok == true) require(message.contains("result"), "a good reply has a result", line);
    json const& id = ids_[replies_++];
    bool const isUnread = ok == false && message.at("error").at("kind") == "request";
    bool const hasId = message.contains("id");
    require(hasId ? message.at("id") == id : id.is_discarded() || isUnread,
            "a reply has its request's id", line);
    require(message.size() == (hasId ? 3 : 2), "a reply says nothing else", line);
  }

  static void requireError(json const& error, std::string_view line) {
    static json const kinds{"request", "path", "value", "refused", "denied", "busy", "file"};
    json const& kind = error.at("kind");
    require(std::find(kinds.begin(), kinds.end(), kind) != kinds.end(),
            "an error is of a kind that clients expect", line);
    require(!error.at("message").get<std::string>().empty(), "an error says why", line);
  }

  Support::SocketClient client_;
  std::vector<json> ids_;  // of what was asked; discarded where it had none
  std::size_t replies_ = 0;
  bool ended_ = false;
};

}  // namespace Fuzz
