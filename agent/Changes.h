#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "agent/slice/SliceFile.h"

namespace Kest::Agent {

/// One step from a configuration towards another.
struct Change {
  std::string text;                    // for people, as in "+ device fap0"
  std::function<void(Config&)> apply;  // one mutator of the entity
  bool createsPort;                    // takes the driver a while
};

struct Changes {
  std::vector<Change> steps;
  std::size_t unchanged = 0;  // entries that both configurations hold alike
};

/// Whether a device is registered anew, and so left down, as its record becomes `now`: then its
/// state is to be announced again.
/// @param before null when there was none
bool isReregistered(Config::Device const* before, Config::Device const& now);

/// The steps that turn `running` into `wanted`, each by one of the entity's mutators, so that only
/// what differs is announced. They come in the order that the state machine's rules need:
///
///  - a device before its state, and before the ports that it carries;
///  - a device's state announced again behind a change of the device, which leaves it down;
///  - a device removed before its state: a registered device must always have one;
///  - native VLANs and modes before the ports that appear, which are then programmed once;
///  - native VLANs and modes before the ports that go, so that nothing stays recorded for them.
Changes changesBetween(Config const& running, Config const& wanted);

}  // namespace Kest::Agent
