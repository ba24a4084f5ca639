#pragma once

#include <cstdint>

/// The work of a program that is compiled to count (KEST_COUNT_EDGES): one for each edge of its
/// control flow that was run through, and one for every few bytes that the C library moved or
/// compared.
namespace Fuzz {

extern std::uint64_t cost;

}  // namespace Fuzz
