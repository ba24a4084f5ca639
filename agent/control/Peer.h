#pragma once

#include <sys/types.h>

namespace Kest::Agent {

/// Who is at the other end of a socket, as the kernel says.
struct Peer {
  uid_t user;
  bool mayChange;  // root and the agent's user

  static Peer of(int fd);
};

}  // namespace Kest::Agent
