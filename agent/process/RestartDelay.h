#pragma once

#include <chrono>

namespace Kest::Agent {

/// When a restart is delayed, and for how long.
struct RestartLimits {
  std::chrono::seconds quick{10};    // a run shorter than this ended quickly
  unsigned atOnce = 2;               // so many quick ends in a row cause no delay
  std::chrono::seconds first{1};     // delay after the next one; each further one doubles it
  std::chrono::seconds longest{30};  // the limit of the doubling
};

/// How long to wait before a process is restarted: not at all, unless it keeps ending soon after
/// its start.
class RestartDelay {
 public:
  explicit RestartDelay(RestartLimits limits = {}) : limits_(limits), next_(limits.first) {}

  /// The wait after a run of this length.
  std::chrono::seconds after(std::chrono::nanoseconds run);

 private:
  RestartLimits limits_;
  unsigned quickEnds_ = 0;  // in a row, counted up to `atOnce`
  std::chrono::seconds next_;
};

}  // namespace Kest::Agent
