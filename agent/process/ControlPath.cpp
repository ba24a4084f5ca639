#include "agent/process/ControlPath.h"

#include "agent/wire/Protocol.h"

namespace Kest::Agent {

std::optional<std::string> controlPath(Options const& options) {
  if (options.control == "none") return std::nullopt;
  if (!options.control.empty()) return options.control;
  // A single pass ends before anybody could ask; it must not get in the way of a running agent.
  if (options.once) return std::nullopt;
  return Wire::defaultSocketPath();
}

}  // namespace Kest::Agent
