#pragma once

#include <cstddef>

namespace Simulation {

/// How many blocks of memory the program and its libraries hold that came from `new`; what is kept
/// for the next objects is freed first.
std::size_t liveAllocations();

}  // namespace Simulation
