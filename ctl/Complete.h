#pragma once

#include <string>
#include <vector>

#include "ctl/Json.h"

namespace Kest::Ctl {

/// What the last of `words`, which follow `kestctl`, may be completed to. Paths, types and handlers
/// come from the agent, quickly or not at all. `file:` alone leaves it to the shell's file names.
std::vector<std::string> completions(std::vector<std::string> const& words);

}  // namespace Kest::Ctl
