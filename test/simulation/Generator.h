#pragma once

#include <cstdint>
#include <vector>

#include "test/simulation/Event.h"

namespace Simulation {

/// The first `count` events of the seed's run, the same on every machine. Seeds differ in taste:
/// each makes some kinds of events seldom and others often.
std::vector<Event> eventsOf(std::uint64_t seed, std::size_t count);

}  // namespace Simulation
