#pragma once

#include <cstddef>

/// Memory that runs out on demand. The program's allocation functions, which the libraries use too,
/// are replaced by ones that count and can fail.
namespace Exhaustion {

/// Allocations that have not been freed; what is kept for the next objects is freed first.
std::size_t liveAllocations() noexcept;

/// How long memory is short.
enum class Lasting { once, forGood };

/// As long as this lives the allocation of that number fails, from 1, and with `forGood` all behind
/// it; no memory is kept from before. One at a time.
class Shortage {
 public:
  Shortage(std::size_t at, Lasting lasting);
  ~Shortage();
  Shortage(Shortage const&) = delete;
  Shortage& operator=(Shortage const&) = delete;

  /// Whether an allocation has failed.
  bool hasCome() const noexcept;
};

/// As long as this lives there is memory after all, for what belongs to the test.
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
