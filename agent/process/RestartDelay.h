#pragma once

#include <chrono>

namespace Kest::Agent {

/// When a start is put off, and for how long.
struct RestartLimits {
  std::chrono::seconds quick{10};  // a run shorter than this ended quickly
  unsigned atOnce = 2;             // so many quick ends in a row are answered at once
  std::chrono::seconds first{1};   // the wait after the next one; it doubles with each further one
  std::chrono::seconds longest{30};  // up to this
};

/// How long to wait before a process that ended is started again: not at all, unless it keeps
/// ending soon after its start.
class RestartDelay {
 public:
  explicit RestartDelay(RestartLimits limits = {}) : limits_(limits), next_(limits.first) {}

  /// The wait after a run of this length.
  std::chrono::seconds after(std::chrono::nanoseconds run);

 private:
  RestartLimits limits_;
  unsigned quickEnds_ = 0;  // in a row; counted as far as it matters
  std::chrono::seconds next_;
};

}  // namespace Kest::Agent
