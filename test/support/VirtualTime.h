#pragma once

#include <cstdint>
#include <ctime>

#include "platform/mox/Time.h"
#include "test/support/Journal.h"

namespace Support {

/// Time that passes only when it is told to, for the whole process: `Mox::now()`, `time()` and
/// `usleep()`. The latter returns at once and is written down as "usleep(MICROSECONDS)".
///
/// One at a time. While there is none `time()` and `Mox::now()` are real, and `usleep()` ends the
/// program: no test sleeps.
class VirtualTime {
 public:
  explicit VirtualTime(Journal& journal);
  ~VirtualTime();
  VirtualTime(VirtualTime const&) = delete;
  VirtualTime& operator=(VirtualTime const&) = delete;

  /// Since a start that is a whole second of `time()`.
  std::int64_t microseconds() const noexcept { return microseconds_; }
  void advance(std::int64_t microseconds) noexcept;

  /// Whole seconds of wall-clock time.
  std::time_t time() const noexcept;
  /// Sets the wall clock forward; `Mox::now()` does not notice.
  void wallClockJump(std::time_t seconds) noexcept { wallClock_ += seconds; }

  void pause(unsigned microseconds);

 private:
  Journal& journal_;
  Mox::ManualTimeSource source_;
  std::int64_t microseconds_ = 0;
  std::time_t wallClock_ = 1700000000;
};

}  // namespace Support
