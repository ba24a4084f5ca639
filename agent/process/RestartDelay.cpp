#include "agent/process/RestartDelay.h"

#include <algorithm>
#include <utility>

namespace Kest::Agent {

std::chrono::seconds RestartDelay::after(std::chrono::nanoseconds run) {
  if (run >= limits_.quick) {
    *this = RestartDelay(limits_);
    return std::chrono::seconds(0);
  }
  if (quickEnds_ < limits_.atOnce) {
    ++quickEnds_;
    return std::chrono::seconds(0);
  }
  return std::exchange(next_, std::min(next_ * 2, limits_.longest));
}

}  // namespace Kest::Agent
