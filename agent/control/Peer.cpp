#include "agent/control/Peer.h"

#include <sys/socket.h>
#include <unistd.h>

namespace Kest::Agent {

namespace {

constexpr uid_t superuser = 0;
constexpr uid_t nobodys = static_cast<uid_t>(-1);

}  // namespace

Peer Peer::of(int fd) {
  ucred peer{};
  socklen_t bytes = sizeof peer;
  bool const isKnown = getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &bytes) == 0;
  uid_t const user = isKnown ? peer.uid : nobodys;
  return {user, user == superuser || user == geteuid()};
}

}  // namespace Kest::Agent
