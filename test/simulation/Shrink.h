#pragma once

#include <optional>
#include <vector>

#include "test/simulation/Event.h"

namespace Simulation {

/// Whether the events make a run fail or end the process. They run in a quiet process of their own.
/// `without` as in `Circumstances`.
bool fails(std::vector<Event> const& events, std::optional<Op> without);

/// Simplifies a failing run as long as it fails: leaves out events, then plans, then values.
std::vector<Event> shrunk(std::vector<Event> events, std::optional<Op> without);

}  // namespace Simulation
