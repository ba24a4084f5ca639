#pragma once

#include <limits>

#include "platform/mox/Export.h"

namespace Mox {

/// A time that does not come.
inline constexpr double never = std::numeric_limits<double>::infinity();

/// Where `now()` and every clock get their time from. Times are in seconds and never run backwards;
/// zero means nothing.
class MOX_API TimeSource {
 public:
  virtual ~TimeSource();
  virtual double now() const = 0;
  /// How long, in real seconds, to wait for `now()` to reach `time`: 0 when it has, `never` when
  /// waiting does not bring it nearer.
  virtual double waitTime(double time) const = 0;
};

/// Time that stands still until it is moved, for tests and simulations.
class MOX_API ManualTimeSource final : public TimeSource {
 public:
  double now() const override { return now_; }
  double waitTime(double time) const override { return time <= now_ ? 0 : never; }
  void nowIs(double now) noexcept { now_ = now; }
  void advance(double by) noexcept { now_ += by; }

 private:
  double now_ = 0;
};

/// The process's time source: the machine's monotonic time, unless `timeSourceIs` put another in
/// its place.
MOX_API TimeSource const& timeSource();
/// Not owned: `source` must outlive its use. Null brings real time back.
MOX_API void timeSourceIs(TimeSource const* source);

/// The time source's time.
MOX_API double now();

}  // namespace Mox
