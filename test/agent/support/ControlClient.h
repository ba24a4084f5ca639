#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

namespace Kest::Agent {

/// A client of a running agent's control socket. Gives up, and throws, after a deadline that no
/// working agent comes near.
class ControlClient {
 public:
  explicit ControlClient(std::string const& path)
      : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) throw std::runtime_error("too long: " + path);
    path.copy(address.sun_path, path.size());
    check(fd_, "socket");
    check(connect(fd_, reinterpret_cast<sockaddr const*>(&address), sizeof address), "connect");
  }
  ControlClient(ControlClient const&) = delete;
  ControlClient& operator=(ControlClient const&) = delete;
  ~ControlClient() { close(fd_); }

  /// The line that the agent answers with; empty when it ends without an answer.
  std::string ask(std::string const& request) {
    std::string const line = request + "\n";
    check(send(fd_, line.data(), line.size(), MSG_NOSIGNAL), "send");
    while (received_.find('\n') == std::string::npos) {
      if (!readMore()) return {};
    }
    std::size_t const end = received_.find('\n');
    std::string reply = received_.substr(0, end);
    received_.erase(0, end + 1);
    return reply;
  }

 private:
  static void check(ssize_t result, char const* what) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  }

  bool readMore() {
    constexpr int patienceMilliseconds = 60000;
    pollfd waiting{fd_, POLLIN, 0};
    int const ready = poll(&waiting, 1, patienceMilliseconds);
    check(ready, "poll");
    if (ready == 0) throw std::runtime_error("the agent does not answer");
    char block[4096];
    ssize_t const bytes = recv(fd_, block, sizeof block, 0);
    if (bytes < 0 && errno == ECONNRESET) return false;
    check(bytes, "recv");
    received_.append(block, static_cast<std::size_t>(bytes));
    return bytes > 0;
  }

  int fd_;
  std::string received_;
};

}  // namespace Kest::Agent
