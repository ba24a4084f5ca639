#include "test/exhaustion/Shortage.h"

#include <cstdlib>
#include <new>
#include <utility>

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

void* allocated(std::size_t bytes) noexcept {
  void* const memory = isShort() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
  if (memory != nullptr) ++live;
  return memory;
}

void* allocatedOrThrow(std::size_t bytes) {
  void* const memory = allocated(bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void freed(void* memory) noexcept {
  if (memory != nullptr) --live;
  std::free(memory);
}

}  // namespace

std::size_t liveAllocations() noexcept {
  return live;
}

Shortage::Shortage(std::size_t at, Lasting howLong) noexcept {
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

void* operator new(std::size_t bytes) {
  return Exhaustion::allocatedOrThrow(bytes);
}
void* operator new[](std::size_t bytes) {
  return Exhaustion::allocatedOrThrow(bytes);
}
void* operator new(std::size_t bytes, std::nothrow_t const&) noexcept {
  return Exhaustion::allocated(bytes);
}
void* operator new[](std::size_t bytes, std::nothrow_t const&) noexcept {
  return Exhaustion::allocated(bytes);
}
void operator delete(void* memory) noexcept {
  Exhaustion::freed(memory);
}
void operator delete[](void* memory) noexcept {
  Exhaustion::freed(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  Exhaustion::freed(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  Exhaustion::freed(memory);
}
void operator delete(void* memory, std::nothrow_t const&) noexcept {
  Exhaustion::freed(memory);
}
void operator delete[](void* memory, std::nothrow_t const&) noexcept {
  Exhaustion::freed(memory);
}
