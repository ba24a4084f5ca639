#pragma once

#include <sys/types.h>

#include <stdexcept>
#include <string>
#include <string_view>

#include "text/File.h"

namespace Kest::Agent {

/// A control socket cannot be made; the message says which and why.
class ControlSocketError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Who may connect to a control socket.
struct SocketAccess {
  mode_t mode = 0660;  // of the socket's file
  std::string group;   // that the file belongs to, by name or number; empty: the process's
};

/// A UNIX stream socket in the file system that clients connect to.
///
/// If several agents start at once, the lock file `PATH.lock` lets one of them go on; the listener
/// holds it as long as it lives. A socket that a dead agent left is replaced. A socket that
/// somebody listens to, with or without the lock, and files of other kinds are left alone. The
/// socket's file has its mode from the first moment, and is removed at the end if it is still this
/// listener's. The lock file stays: if it were removed, two agents could hold it.
class Listener {
 public:
  /// @throw ControlSocketError
  Listener(std::string path, SocketAccess const& access);
  ~Listener();
  Listener(Listener const&) = delete;
  Listener& operator=(Listener const&) = delete;

  int fd() const noexcept { return socket_.fd(); }

  /// The next waiting client, non-blocking; not open when there is none. When the process has no
  /// descriptors left, a few waiting clients are sent `refusal` and turned away.
  Text::Descriptor accept(std::string_view refusal);
  /// Whether the system refused the last `accept` although a client may wait: then the next one
  /// should come a while later.
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
  Text::Descriptor lock_;
  Text::Descriptor spare_;  // given up for a moment to turn clients away
  Text::Descriptor socket_;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  bool isStuck_ = false;
};

}  // namespace Kest::Agent
