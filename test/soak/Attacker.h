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

/// Those that are known.
std::vector<Attacker> attackers();

/// A process in which attackers attack, as user nobody if this one is root's. It ends with this.
class Attack {
 public:
  Attack(std::string const& socketPath, std::vector<Attacker> const& attackers);
  Attack(Attack const&) = delete;
  Attack& operator=(Attack const&) = delete;
  ~Attack();

 private:
  pid_t pid_;
};

}  // namespace Kest::Soak
