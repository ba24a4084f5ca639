#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
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

namespace Kest::Agent {

/// A client's end of a connection. Never blocks, except in `ask`.
class Client {
 public:
  /// @param fd becomes the client's
  explicit Client(int fd) : fd_(fd) { fcntl(fd_, F_SETFL, O_NONBLOCK); }
  explicit Client(std::string const& path)
      : Client(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    if (Support::connectTo(fd_, path) != 0) {
      throw std::system_error(errno, std::generic_category(), "connect to " + path);
    }
  }
  Client(Client&& other) noexcept
      : fd_(std::exchange(other.fd_, -1)), received_(std::move(other.received_)) {}
  Client& operator=(Client&&) = delete;
  ~Client() { close(); }

  /// Sends what there is room for; returns how much that is.
  std::size_t sendSome(std::string_view bytes) const {
    ssize_t const sent = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent >= 0) return static_cast<std::size_t>(sent);
    EXPECT_EQ(errno, EAGAIN);
    return 0;
  }
  void send(std::string_view bytes) const { ASSERT_EQ(sendSome(bytes), bytes.size()); }
  void halfClose() const { shutdown(fd_, SHUT_WR); }
  void close() {
    if (fd_ >= 0) ::close(std::exchange(fd_, -1));
  }

  /// Takes what has come; returns whether the other side may send more.
  bool receive() {
    std::array<char, 65536> block{};
    while (true) {
      ssize_t const bytes = recv(fd_, block.data(), block.size(), 0);
      if (bytes < 0) return errno == EAGAIN;
      if (bytes == 0) return false;
      received_.append(block.data(), static_cast<std::size_t>(bytes));
    }
  }
  bool isEnded() { return !receive(); }

  /// The line that the agent answers with; empty when it ends without an answer. Gives up, and
  /// throws, after a time that no working agent needs.
  std::string ask(std::string const& request) {
    constexpr int patienceMilliseconds = 60000;
    send(request + "\n");
    std::size_t end;
    for (bool isOpen = true; (end = received_.find('\n')) == std::string::npos;) {
      if (!isOpen) return {};
      pollfd waiting{fd_, POLLIN, 0};
      if (poll(&waiting, 1, patienceMilliseconds) <= 0) {
        throw std::runtime_error("the agent does not answer");
      }
      isOpen = receive();
    }
    std::string line = received_.substr(0, end);
    received_.erase(0, end + 1);
    return line;
  }

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
  /// The whole lines among it.
  std::vector<std::string> lines() {
    receive();
    std::vector<std::string> all;
    for (std::size_t end; (end = received_.find('\n')) != std::string::npos;) {
      all.push_back(received_.substr(0, end));
      received_.erase(0, end + 1);
    }
    return all;
  }

 private:
  int fd_;
  std::string received_;
};

}  // namespace Kest::Agent
