#pragma once

#include <unistd.h>

#include <utility>

namespace Kest::Agent {

/// An open file descriptor, closed with this.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) noexcept : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }

  int fd() const noexcept { return fd_; }
  bool isOpen() const noexcept { return fd_ >= 0; }

 private:
  int fd_;
};

}  // namespace Kest::Agent
