#pragma once

#include <cstddef>

/// Memory that runs out on demand. The program replaces its allocation functions, for its libraries
/// too, by ones that count and can fail.
namespace Exhaustion {

/// Allocations that have not been freed; what is kept for the next objects is freed first.
std::size_t liveAllocations() noexcept;

/// How long memory is short.
enum class Lasting { once, forGood };

/// While it lives, the allocation number `at`, from 1, fails, and with `forGood` all after it. One
/// at a time.
class Shortage {
 public:
  Shortage(std::size_t at, Lasting lasting);
  ~Shortage();
  Shortage(Shortage const&) = delete;
  Shortage& operator=(Shortage const&) = delete;

  /// Whether an allocation has failed.
  bool hasCome() const noexcept;
};

/// While it lives, there is memory after all, for the test's own needs.
class Pause {
 public:
  Pause() noexcept;
  ~Pause();
  Pause(Pause const&) = delete;
  Pause& operator=(Pause const&) = delete;

 private:
  std::size_t untilFailure_;
};

}  // namespace Exhaustion
