#pragma once

#include <sys/types.h>

#include <stdexcept>
#include <string>
#include <string_view>

#include "agent/control/Descriptor.h"

namespace Kest::Agent {

/// A control socket that cannot be had; the message says which and why.
class ControlSocketError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Who may connect to a control socket.
struct SocketAccess {
  mode_t mode = 0660;  // as of a file
  std::string group;   // that the file belongs to, by name or number; empty: the process's
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
  /// @throw ControlSocketError
  Listener(std::string path, SocketAccess const& access);
  ~Listener();
  Listener(Listener const&) = delete;
  Listener& operator=(Listener const&) = delete;

  int fd() const noexcept { return socket_.fd(); }

  /// The next client that waits, non-blocking; none open when there is none to be had now. When the
  /// process is out of descriptors, a few of those who wait are sent `refusal` and turned away.
  Descriptor accept(std::string_view refusal);
  /// Whether the system did not let the last `accept` take one, although there may be one: then it
  /// should be left alone for a while.
  bool isStuck() const noexcept { return isStuck_; }

 private:
  [[noreturn]] void refuse(std::string const& why) const;
  [[noreturn]] void refuseErrno(char const* what) const;
  void checkPath() const;
  void lock();
  void removeStale() const;
  void bind(SocketAccess const& access);
  void groupIs(std::string const& group) const;
  int turnOneAway(std::string_view refusal);

  std::string path_;
  Descriptor lock_;
  Descriptor spare_;  // given up for a moment to turn clients away
  Descriptor socket_;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  bool isStuck_ = false;
};

}  // namespace Kest::Agent
