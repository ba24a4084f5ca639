#pragma once

#include <limits>

#include "platform/mox/Export.h"

namespace Mox {

/// Seconds. Never runs backwards; its zero means nothing.
using Seconds = double;

/// A time that does not come.
inline constexpr Seconds never = std::numeric_limits<Seconds>::infinity();

/// Where `now()` and every clock get their time from.
class MOX_API TimeSource {
 public:
  virtual ~TimeSource();
  virtual Seconds now() const = 0;
  /// How long, in real seconds, to wait for `now()` to reach `time`: 0 when it has, `never` when
  /// waiting does not bring it nearer.
  virtual Seconds waitTime(Seconds time) const = 0;
};

/// The machine's monotonic time.
class MOX_API RealTimeSource final : public TimeSource {
 public:
  Seconds now() const override;
  Seconds waitTime(Seconds time) const override;
};

/// Time that stands still until it is moved, for tests and simulations.
class MOX_API ManualTimeSource final : public TimeSource {
 public:
  Seconds now() const override { return now_; }
  Seconds waitTime(Seconds time) const override { return time <= now_ ? 0 : never; }
  void nowIs(Seconds now) noexcept { now_ = now; }
  void advance(Seconds by) noexcept { now_ += by; }

 private:
  Seconds now_ = 0;
};

/// The process's time source: real time, unless `timeSourceIs` put another in its place.
MOX_API TimeSource const& timeSource();
/// Not owned: `source` must outlive its use. Null brings real time back.
MOX_API void timeSourceIs(TimeSource const* source);

/// The time source's time.
MOX_API Seconds now();

}  // namespace Mox
