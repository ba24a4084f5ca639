#include "platform/mox/Time.h"

#include <algorithm>
#include <chrono>

namespace Mox {

namespace {

RealTimeSource const realTime;
TimeSource const* current = &realTime;

}  // namespace

TimeSource::~TimeSource() = default;

double RealTimeSource::now() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double RealTimeSource::waitTime(double time) const {
  return std::max(time - now(), 0.0);
}

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
