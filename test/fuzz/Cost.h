#pragma once

#include <cstdint>

/// What a program compiled to count (KEST_COUNT_EDGES) has done: edges of its control flow that it
/// ran through, loops as often as they went round; and, for what the C library moves and compares,
/// one for so many bytes as an edge costs.
namespace Fuzz {

extern std::uint64_t cost;

}  // namespace Fuzz
