#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Kest::Bench {

/// A client's connection to a UNIX socket. It waits for as many bytes as it knows a reply to have,
/// whoever serves it, so that no client's reader is measured.
class Socket {
 public:
  explicit Socket(char const* path);
  ~Socket();
  Socket(Socket const&) = delete;
  Socket& operator=(Socket const&) = delete;

  void send(std::string_view bytes) const;
  /// The next `bytes` bytes, until the next call. Fails if the other side closes before.
  std::string_view receive(std::size_t bytes);
  /// All that comes, until nothing more has come for a while.
  std::string receiveAll();
  /// Sends a request and returns its reply, however long.
  std::string ask(std::string_view request);
  /// How many bytes have come that nobody has received, after waiting for some.
  std::size_t waiting() const;

 private:
  int fd_;
  std::string received_;
};

}  // namespace Kest::Bench
