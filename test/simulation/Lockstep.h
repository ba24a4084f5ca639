#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "test/simulation/Event.h"
#include "test/simulation/Probes.h"

namespace Simulation {

/// What came of a run.
struct Outcome {
  /// What differed, and where; empty when nothing did.
  std::string failure;
  std::uint64_t digest = 0;  // of everything that was observed
  std::size_t events = 0;
  std::size_t ends = 0;   // of the process, each in a process of its own
  std::size_t leaks = 0;  // blocks of memory that were left
};

/// Told before each event, by its position.
using Watch = void (*)(std::size_t event);

/// Takes the events through the plain world and the real one, side by side, up to the first
/// difference. An event that is to end the process happens in a process of its own, which must end
/// so; the run then goes on as if it had not been, but with the driver mended.
Outcome run(std::vector<Event> const& events, Probes& probes, Watch watch = nullptr);

}  // namespace Simulation
