#include "agent/control/Admission.h"

#include <algorithm>

#include "agent/wire/Protocol.h"

namespace Kest::Agent {

namespace {

std::string full(std::string const& whose) {
  return "there are " + whose + " already: try again later";
}

}  // namespace

/// With few descriptors, fewer connections are kept.
std::size_t Admission::kept() const noexcept {
  return std::min(Wire::connectionsKept, all_ / 2);
}

std::string Admission::refusal(Peer const& peer) const {
  if (trusted_ + others_ >= all_) return full(std::to_string(all_) + " connections");
  if (peer.mayChange) return "";
  auto const known = byUser_.find(peer.user);
  if (known != byUser_.end() && known->second >= Wire::mostConnectionsOfUser) {
    return full(std::to_string(known->second) + " connections of user " +
                std::to_string(peer.user));
  }
  if (others_ < all_ - kept()) return "";
  return full(std::to_string(others_) + " connections of users who may only read");
}

void Admission::admit(Peer const& peer) {
  if (peer.mayChange) {
    ++trusted_;
  } else {
    ++byUser_[peer.user];
    ++others_;
  }
}

void Admission::leave(Peer const& peer) noexcept {
  if (peer.mayChange) {
    --trusted_;
    return;
  }
  --others_;
  auto const user = byUser_.find(peer.user);
  if (--user->second == 0) byUser_.erase(user);
}

}  // namespace Kest::Agent
