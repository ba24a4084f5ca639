#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace Kest::Agent {

/// What a service manager listens on. Gives up, and throws, after a deadline that nobody comes
/// near.
class NotifySocket {
 public:
  /// @param path `@` and a name for one that no file stands for
  explicit NotifySocket(std::string path) : fd_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path[0] == '@') path[0] = '\0';
    path.copy(address.sun_path, sizeof address.sun_path);
    auto const bytes = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    if (bind(fd_, reinterpret_cast<sockaddr const*>(&address), bytes) != 0) {
      throw std::runtime_error("bind");
    }
  }
  NotifySocket(NotifySocket const&) = delete;
  NotifySocket& operator=(NotifySocket const&) = delete;
  ~NotifySocket() { close(fd_); }

  /// The next thing that is told.
  std::string told() const {
    constexpr int patienceMilliseconds = 60000;
    pollfd waiting{fd_, POLLIN, 0};
    if (poll(&waiting, 1, patienceMilliseconds) != 1) throw std::runtime_error("nothing is told");
    std::array<char, 256> text{};
    ssize_t const bytes = recv(fd_, text.data(), text.size(), 0);
    return {text.data(), static_cast<std::size_t>(bytes)};
  }

 private:
  int fd_;
};

}  // namespace Kest::Agent
