#pragma once

#include <string>
#include <vector>

#include "agent/access/Entities.h"
#include "agent/process/Console.h"

namespace Kest::Agent {

/// Shows every port and device as configured and as the status has it: in tables on a terminal,
/// otherwise as a line of NAME=VALUE pairs each.
void showStatus(Console& console, Config const& config, Status const& status);

/// The configured ports and devices that did not come up, each as in "port et3/1" or "device fap0":
/// ports that are not created, devices that are not registered or not in their configured state.
std::vector<std::string> notUp(Config const& config, Status const& status);

}  // namespace Kest::Agent
