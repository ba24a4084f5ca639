#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Kest::Soak {

/// Clients that try to keep an agent from its work.
struct Attacker {
  char const* name;
  std::size_t clients;
  /// What each of them asks, again and again, without waiting for replies; nothing: it is silent.
  std::vector<std::string> requests;
  std::size_t readAtOnce;  // bytes of replies in a turn; 0: it never reads
  bool isOnce = false;     // it asks once, and stays
};

/// All attackers that a run tries.
std::vector<Attacker> attackers();

/// A process in which an attacker attacks, as `user` if this one is root's. It ends with this.
class Attack {
 public:
  Attack(std::string const& socketPath, Attacker const& attacker, uid_t user);
  Attack(Attack const&) = delete;
  Attack& operator=(Attack const&) = delete;
  ~Attack();

  /// Throws `std::runtime_error` when the attacker has ended because, say, it could not reach the
  /// socket.
  void check() const;

 private:
  pid_t pid_;
};

}  // namespace Kest::Soak
