#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "agent/control/Listener.h"
#include "agent/json/GenericJson.h"
#include "platform/mox/ActivityLoop.h"

namespace Kest::Agent {

/// One client of the control socket.
///
/// It is served one request in a round of the loop; the next is looked at once the reply to the
/// last has been given, and only while the client reads what it is sent. So neither a client that
/// floods nor one that never reads takes more than its turn, or more memory than the bounds of
/// `agent/wire/Protocol.h`.
///
/// Ownership. Shared by its server, which lets go of it when it is told that the client has gone,
/// and by the call that is under way. Whoever replies later keeps a weak reference.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  /// Serves one request, an object: calls `reply` or `refuse`, now or later.
  using Serve = std::function<void(Connection& connection, Json const& request)>;
  /// The client has gone, or has been sent away.
  using Gone = std::function<void(Connection& connection)>;

  Connection(Mox::ActivityLoop& loop, Descriptor socket, Serve serve, Gone gone);
  ~Connection();
  Connection(Connection const&) = delete;
  Connection& operator=(Connection const&) = delete;

  /// Begins to read.
  void start() { update(); }

  int fd() const noexcept { return socket_.fd(); }
  /// The user that the client runs as, by the socket's peer credentials.
  uid_t user() const noexcept { return user_; }
  bool mayChange() const noexcept;

  /// Answers the request that is being served.
  void reply(Json result);
  void refuse(char const* kind, std::string const& message, std::string const& suggestion);

  /// Events are sent from now on.
  void watch() noexcept { watching_ = true; }
  bool isWatching() const noexcept { return watching_; }
  /// @param line an event, with its newline; dropped and counted while there is no room
  void event(std::string const& line);

  /// Bytes that the client has not read yet.
  std::size_t unread() const noexcept { return output_.size() - written_; }

 private:
  void readable();
  void writable();
  bool hasRequest() const;
  bool canServe() const;
  void serveNext();
  void refuseTooLong();
  void schedule();
  void serveLine(std::string_view line);
  void answer(Json reply);
  void send(std::string_view bytes);
  void sayLost();
  void update();
  void readsIs(bool reads);
  void writesIs(bool writes);
  void end();

  Mox::ActivityLoop& loop_;
  Descriptor socket_;
  Serve serve_;
  Gone gone_;
  uid_t user_;
  std::string input_;
  std::size_t lineEnd_ = std::string::npos;  // of the first line, if it has come whole
  std::string output_;
  std::size_t written_ = 0;  // of the output
  /// Of the request that is being served; discarded if it has none.
  Json id_ = Json(Json::value_t::discarded);
  bool isServing_ = false;  // a request is waiting for its reply
  bool isScheduled_ = false;
  bool reads_ = false;  // the loop watches for input
  bool writes_ = false;
  bool inputEnded_ = false;
  bool closing_ = false;  // once the output has gone
  bool watching_ = false;
  std::size_t lost_ = 0;  // events that there was no room for
};

}  // namespace Kest::Agent
