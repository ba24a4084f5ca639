#pragma once

#include <string>

#include "agent/process/Options.h"

namespace Kest::Agent {

/// The environment variable that says what ended the last run, as in `signal 6 (SIGABRT)`. Whoever
/// restarts the agent sets it.
inline constexpr char const* lastEndVariable = "KEST_LAST_END";

/// Why the agent runs, as a line for people: a cold start, or what ended the last run. Empty for a
/// single pass without a supervisor, where it would say nothing.
std::string runReason(Options const& options);

}  // namespace Kest::Agent
