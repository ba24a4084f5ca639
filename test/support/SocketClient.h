#pragma once

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "test/support/UnixSocket.h"

namespace Support {

/// A stream socket that is connected to `path`, or -1. Waits until the backlog has room, unless
/// `flags` are SOCK_NONBLOCK.
inline int connectedTo(std::string const& path, int flags = 0) {
  int const fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0);
  if (connectTo(fd, path) == 0) return fd;
  int const error = errno;
  close(fd);
  errno = error;
  return -1;
}

/// A client's end of a connection. Only connecting and `ask` wait. `std::system_error` when the
/// system refuses.
class SocketClient {
 public:
  /// @param fd becomes the client's
  explicit SocketClient(int fd) : fd_(fd) { fcntl(fd_, F_SETFL, O_NONBLOCK); }
  explicit SocketClient(std::string const& path)
      : SocketClient(static_cast<int>(check(connectedTo(path), "connect to " + path))) {}
  SocketClient(SocketClient&& other) noexcept
      : fd_(std::exchange(other.fd_, -1)), received_(std::move(other.received_)) {}
  SocketClient& operator=(SocketClient&&) = delete;
  ~SocketClient() { close(); }

  int fd() const { return fd_; }
  /// Sends what there is room for; returns how much that is.
  std::size_t sendSome(std::string_view bytes) const {
    ssize_t const sent = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EAGAIN) return 0;
    return static_cast<std::size_t>(check(sent, "send"));
  }
  void send(std::string_view bytes) const {
    if (sendSome(bytes) != bytes.size()) throw std::runtime_error("there is no room for a request");
  }
  void halfClose() const { shutdown(fd_, SHUT_WR); }
  void close() {
    if (fd_ >= 0) ::close(std::exchange(fd_, -1));
  }

  /// Takes what has come; returns whether the other side may send more.
  bool receive() {
    std::array<char, 65536> block;
    while (true) {
      ssize_t const bytes = recv(fd_, block.data(), block.size(), 0);
      if (bytes < 0) return errno == EAGAIN;
      if (bytes == 0) return false;
      received_.append(block.data(), static_cast<std::size_t>(bytes));
    }
  }
  bool isEnded() { return !receive(); }

  /// What has come since the last time.
  std::string received() {
    receive();
    return std::exchange(received_, "");
  }
  /// At most so much of what has come; only before anything else has been taken.
  std::string receivedSome(std::size_t most) const {
    std::string some(most, '\0');
    ssize_t const bytes = recv(fd_, some.data(), most, 0);
    some.resize(bytes < 0 ? 0 : static_cast<std::size_t>(bytes));
    return some;
  }
  /// The whole lines among it, without their ends.
  std::vector<std::string> lines() {
    receive();
    return takenLines(received_.size());
  }
  /// The line that answers a request, waited for; empty when the other side ends without one.
  std::string ask(std::string const& request) {
    send(request + "\n");
    while (received_.find('\n') == std::string::npos) {
      constexpr int patienceMilliseconds = 120000;  // no working agent comes near
      pollfd waiting{fd_, POLLIN, 0};
      if (check(poll(&waiting, 1, patienceMilliseconds), "poll") == 0) {
        throw std::runtime_error("nobody answers " + request);
      }
      if (isEnded() && received_.find('\n') == std::string::npos) return {};
    }
    return takenLines(1).front();
  }

 private:
  static ssize_t check(ssize_t result, std::string const& what) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), what);
    return result;
  }

  std::vector<std::string> takenLines(std::size_t most) {
    std::vector<std::string> all;
    std::size_t begin = 0;
    for (std::size_t end; all.size() < most; begin = end + 1) {
      end = received_.find('\n', begin);
      if (end == std::string::npos) break;
      all.push_back(received_.substr(begin, end - begin));
    }
    received_.erase(0, begin);
    return all;
  }

  int fd_;
  std::string received_;
};

}  // namespace Support
