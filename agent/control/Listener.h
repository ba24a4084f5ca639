#pragma once

#include <sys/types.h>
#include <stdexcept>
#include <string>

namespace Kest::Agent {

/// A control socket that cannot be had; the message says which and why.
class ControlSocketError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// An open file descriptor, closed with this.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) noexcept : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(other.take()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();

  int fd() const noexcept { return fd_; }
  bool isOpen() const noexcept { return fd_ >= 0; }
  int take() noexcept;

 private:
  int fd_;
};

/// A UNIX stream socket in the file system that clients connect to.
///
/// The lock file `PATH.lock`, held as long as the listener lives, lets one of several agents that
/// start at once go on. A socket that a dead agent left behind is replaced; one that somebody
/// listens to, lock or not, and a file of another kind are left alone. The socket's file has its
/// mode from its first moment and is removed at the end if it still is this listener's. The lock
/// file stays: removed, it could be held by two.
class Listener {
 public:
  /// @param mode who may connect, as of a file
  /// @throw ControlSocketError
  Listener(std::string path, mode_t mode);
  ~Listener();
  Listener(Listener const&) = delete;
  Listener& operator=(Listener const&) = delete;

  int fd() const noexcept { return socket_.fd(); }

  /// The next client that waits, non-blocking; none open when there is no more. When the process is
  /// out of descriptors, the clients that wait are turned away.
  Descriptor accept();

 private:
  [[noreturn]] void refuse(std::string const& why) const;
  [[noreturn]] void refuseErrno(char const* what) const;
  void checkPath() const;
  void lock();
  void removeStale() const;
  void bind(mode_t mode);
  void turnAway();

  std::string path_;
  Descriptor lock_;
  Descriptor spare_;  // given up for a moment to turn clients away
  Descriptor socket_;
  dev_t device_ = 0;
  ino_t inode_ = 0;
};

}  // namespace Kest::Agent
