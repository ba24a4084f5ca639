#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>
#include <string>

namespace Support {

inline sockaddr_un unixAddress(std::string const& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

/// Connects a socket to a path; 0, or -1 and `errno`.
inline int connectTo(int fd, std::string const& path) {
  sockaddr_un const address = unixAddress(path);
  return connect(fd, reinterpret_cast<sockaddr const*>(&address), sizeof address);
}

/// Binds a socket to a path; 0, or -1 and `errno`.
inline int bindTo(int fd, std::string const& path) {
  sockaddr_un const address = unixAddress(path);
  return bind(fd, reinterpret_cast<sockaddr const*>(&address), sizeof address);
}

}  // namespace Support
