#include "bench/Socket.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace Kest::Bench {

namespace {

constexpr int longestWait = 10000;  // milliseconds, for the first bytes
constexpr int silence = 20;         // after the last ones

[[noreturn]] void fail(char const* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

Socket::Socket(char const* path) : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::string_view(path).copy(address.sun_path, sizeof address.sun_path - 1);
  if (connect(fd_, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) fail(path);
}

Socket::~Socket() {
  close(fd_);
}

void Socket::send(std::string_view bytes) const {
  while (!bytes.empty()) {
    ssize_t const sent = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0) fail("send");
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

std::string_view Socket::receive(std::size_t bytes) {
  received_.resize(bytes);
  for (std::size_t at = 0; at < bytes;) {
    ssize_t const taken = recv(fd_, received_.data() + at, bytes - at, 0);
    if (taken <= 0) fail("recv");
    at += static_cast<std::size_t>(taken);
  }
  return received_;
}

std::string Socket::receiveAll() {
  std::string all;
  pollfd readable{fd_, POLLIN, 0};
  while (poll(&readable, 1, all.empty() ? longestWait : silence) > 0) all += receive(waiting());
  return all;
}

std::string Socket::ask(std::string_view request) {
  send(request);
  return receiveAll();
}

std::size_t Socket::waiting() const {
  pollfd readable{fd_, POLLIN, 0};
  poll(&readable, 1, -1);
  int bytes = 0;
  if (ioctl(fd_, FIONREAD, &bytes) != 0 || bytes == 0) fail("the other side has gone");
  return static_cast<std::size_t>(bytes);
}

}  // namespace Kest::Bench
