#pragma once

#include <string>

#include "agent/process/Options.h"

namespace Kest::Agent {

/// The environment variable in which whoever starts the agent again says what ended its last run,
/// as in `signal 6 (SIGABRT)`.
inline constexpr char const* lastEndVariable = "KEST_LAST_END";

/// Why the agent runs, for people: after which end, or that this is a cold start. Empty when that
/// is not worth a word: a single pass that nobody watches over.
std::string runReason(Options const& options);

}  // namespace Kest::Agent
