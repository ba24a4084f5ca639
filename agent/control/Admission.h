#pragma once

#include <sys/types.h>

#include <cstddef>
#include <map>
#include <string>

#include "agent/control/Peer.h"

namespace Kest::Agent {

/// Decides who may have one more connection. Some connections are kept for those who may change the
/// agent; every other user gets only a few.
class Admission {
 public:
  /// @param all at most `Wire::mostConnections`
  explicit Admission(std::size_t all) noexcept : all_(all) {}

  /// Why there is no place for one more; empty when there is.
  std::string refusal(Peer const& peer) const;
  void admit(Peer const& peer);
  void leave(Peer const& peer) noexcept;

 private:
  std::size_t kept() const noexcept;

  std::size_t all_;
  std::size_t trusted_ = 0;
  std::size_t others_ = 0;
  std::map<uid_t, std::size_t> byUser_;  // of the others; none is 0
};

}  // namespace Kest::Agent
