#include "test/exhaustion/Shortage.h"

#include <cstdlib>
#include <utility>

#include "test/support/Allocation.h"

namespace Exhaustion {

namespace {

std::size_t live = 0;
std::size_t untilFailure = 0;  // 0: memory is not going to be short
Lasting lasting = Lasting::once;
bool failed = false;

bool isShort() noexcept {
  if (untilFailure > 1)
    --untilFailure;
  else if (untilFailure == 1) {
    failed = true;
    if (lasting == Lasting::once) untilFailure = 0;
    return true;
  }
  return false;
}

}  // namespace

std::size_t liveAllocations() noexcept {
  return live;
}

Shortage::Shortage(std::size_t at, Lasting howLong) {
  failed = false;
  lasting = howLong;
  untilFailure = at;
}

Shortage::~Shortage() {
  untilFailure = 0;
}

Pause::Pause() noexcept : untilFailure_(std::exchange(untilFailure, 0)) {}

Pause::~Pause() {
  untilFailure = untilFailure_;
}

bool Shortage::hasCome() const noexcept {
  return failed;
}

}  // namespace Exhaustion

void* Test::allocated(std::size_t bytes) noexcept {
  void* const memory = Exhaustion::isShort() ? nullptr : std::malloc(bytes);
  if (memory != nullptr) ++Exhaustion::live;
  return memory;
}

void Test::freed(void* memory) noexcept {
  if (memory != nullptr) --Exhaustion::live;
  std::free(memory);
}
