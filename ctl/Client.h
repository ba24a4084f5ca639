#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "ctl/Json.h"

namespace Kest::Ctl {

/// A connection to the agent. Every wait ends at a deadline.
/// @throw Failure of kind `no-agent`, `timeout`, or `reply` for a message that breaks the protocol
class Client {
 public:
  using Clock = std::chrono::steady_clock;
  /// None: wait for ever.
  using Deadline = std::optional<Clock::time_point>;

  static Deadline after(double seconds);

  Client(std::string const& path, Deadline deadline);
  ~Client();
  Client(Client const&) = delete;
  Client& operator=(Client const&) = delete;

  /// Sends a request and returns the result of its reply. `Failure` of the reply's kind when the
  /// agent refuses.
  /// @param following bytes that come after the request
  Json ask(Json const& request, Deadline deadline, std::string_view following = {});
  /// Waits for the next event. Throws `Failure` when the agent ends the connection.
  Json event();

 private:
  void connect(std::string const& path, Deadline deadline) const;
  void waitIs(Deadline deadline) const;
  void send(std::string_view bytes, Deadline deadline);
  void await(short events, Deadline deadline) const;
  std::string line(Deadline deadline);
  Json receive(Deadline deadline);

  int fd_;
  std::string input_;
  std::size_t begin_ = 0;  // of the input that has not been taken
};

}  // namespace Kest::Ctl
