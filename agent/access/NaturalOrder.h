#pragma once

#include <string_view>

namespace Kest::Agent {

/// The order in which people number things: runs of digits compare as numbers, so et2 comes before
/// et10. Equal numbers with different leading zeros, and everything else, compare as text.
bool naturalLess(std::string_view a, std::string_view b);

}  // namespace Kest::Agent
