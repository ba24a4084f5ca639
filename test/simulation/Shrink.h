#pragma once

#include <optional>
#include <vector>

#include "test/simulation/Event.h"

namespace Simulation {

/// Whether the events make a run fail, or end the process. Tried in a process of its own, which is
/// quiet. `without` as in `Circumstances`.
bool fails(std::vector<Event> const& events, std::optional<Op> without);

/// Leaves out of a failing run what it does not need to fail: events, then plans of their own, then
/// values.
std::vector<Event> shrunk(std::vector<Event> events, std::optional<Op> without);

}  // namespace Simulation
