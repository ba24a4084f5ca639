#include "test/support/Allocation.h"

#include <new>

namespace {

void* allocatedOrNull(std::size_t bytes) noexcept {
  return Test::allocated(bytes == 0 ? 1 : bytes);
}

void* allocatedOrThrow(std::size_t bytes) {
  void* const memory = allocatedOrNull(bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* operator new(std::size_t bytes) {
  return allocatedOrThrow(bytes);
}
void* operator new[](std::size_t bytes) {
  return allocatedOrThrow(bytes);
}
void* operator new(std::size_t bytes, std::nothrow_t const&) noexcept {
  return allocatedOrNull(bytes);
}
void* operator new[](std::size_t bytes, std::nothrow_t const&) noexcept {
  return allocatedOrNull(bytes);
}
void operator delete(void* memory) noexcept {
  Test::freed(memory);
}
void operator delete[](void* memory) noexcept {
  Test::freed(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  Test::freed(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  Test::freed(memory);
}
void operator delete(void* memory, std::nothrow_t const&) noexcept {
  Test::freed(memory);
}
void operator delete[](void* memory, std::nothrow_t const&) noexcept {
  Test::freed(memory);
}
