#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "test/simulation/Event.h"
#include "test/simulation/Probes.h"

namespace Simulation {

/// The result of a run.
struct Outcome {
  /// The first difference, and where it was; empty when there is none.
  std::string failure;
  std::uint64_t digest = 0;  // of everything that was observed
  std::size_t events = 0;
  std::size_t ends = 0;   // of the process, each in a process of its own
  std::size_t leaks = 0;  // blocks of memory that were left
};

struct Circumstances {
  /// Where to put the number of each event before it happens; null for nowhere.
  std::size_t* at = nullptr;
  /// Events that the real world leaves out, so that a run can be seen to fail.
  std::optional<Op> without;
  /// How many seconds a thousand events may take before the process ends.
  unsigned patience = 60;
};

/// Takes the events through the plain world and the real one, side by side, up to the first
/// difference. An event that is to end the process happens in a process of its own, which must end
/// so; the run then goes on as if it had not been, but with the driver mended.
Outcome run(std::vector<Event> const& events, Probes& probes, Circumstances const& circumstances);

}  // namespace Simulation
