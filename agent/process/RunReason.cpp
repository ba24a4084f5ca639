#include "agent/process/RunReason.h"

#include <cstdlib>

namespace Kest::Agent {

std::string runReason(Options const& options) {
  char const* const lastEnd = std::getenv(lastEndVariable);
  if (lastEnd != nullptr && *lastEnd != '\0') {
    return std::string("restarted: the last run was ended by ") + lastEnd;
  }
  return options.once && !options.supervise ? "" : "cold start";
}

}  // namespace Kest::Agent
