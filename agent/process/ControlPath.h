#pragma once

#include <optional>
#include <string>

#include "agent/process/Options.h"

namespace Kest::Agent {

/// Where the agent's control socket is to be; none when it is not to have one.
std::optional<std::string> controlPath(Options const& options);

}  // namespace Kest::Agent
