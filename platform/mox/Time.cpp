#include "platform/mox/Time.h"

#include <algorithm>
#include <chrono>

namespace Mox {

namespace {

/// The machine's monotonic time.
class RealTimeSource final : public TimeSource {
 public:
  double now() const override {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
  }
  double waitTime(double time) const override { return std::max(time - now(), 0.0); }
};

RealTimeSource const realTime;
TimeSource const* current = &realTime;

}  // namespace

TimeSource::~TimeSource() = default;

TimeSource const& timeSource() {
  return *current;
}

void timeSourceIs(TimeSource const* source) {
  current = source != nullptr ? source : &realTime;
}

double now() {
  return current->now();
}

}  // namespace Mox
