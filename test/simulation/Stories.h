#pragma once

#include <span>
#include <string_view>

namespace Simulation {

/// Events that lead somewhere together, as scripts: `K` stands for one key throughout the story,
/// `P` for the place of an observer of configurations, `Q` of statuses, and `V` for any small
/// number.
struct Story {
  std::string_view lines[8];
};

std::span<Story const> stories();

}  // namespace Simulation
