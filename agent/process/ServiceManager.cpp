#include "agent/process/ServiceManager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include "agent/process/Output.h"
#include "agent/process/SignOfLife.h"

namespace Kest::Agent {

namespace {

/// A socket connected to that path, or to `@` and an abstract name; -1 and `errno` on failure.
int connected(std::string path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    errno = ENAMETOOLONG;
    return -1;
  }
  if (path[0] == '@') path[0] = '\0';
  path.copy(address.sun_path, path.size());
  auto const bytes = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
  int const fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (fd < 0 || connect(fd, reinterpret_cast<sockaddr const*>(&address), bytes) == 0) return fd;
  int const error = errno;
  close(fd);
  errno = error;
  return -1;
}

}  // namespace

ServiceManager::ServiceManager() {
  char const* const path = std::getenv("NOTIFY_SOCKET");
  if (path == nullptr || *path == '\0') return;
  fd_ = connected(path);
  if (fd_ >= 0) return;
  std::cerr << "kest-slice-agent: NOTIFY_SOCKET is not used: " + std::string(path) + ": " +
                   std::strerror(errno) + "\n";
}

ServiceManager::~ServiceManager() {
  if (fd_ >= 0) close(fd_);
}

void ServiceManager::isTold(std::string_view state) const noexcept {
  if (fd_ >= 0) writeAtOnce(fd_, OutputKind::socket, state);
}

void ServiceManager::isToldOfLife() const noexcept {
  bool const watches = std::getenv("WATCHDOG_USEC") != nullptr;
  if (fd_ >= 0 && watches) signsOfLifeGoTo(fd_, "WATCHDOG=1");
}

}  // namespace Kest::Agent
