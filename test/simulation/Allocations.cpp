#include "test/simulation/Allocations.h"

#include <cstdlib>
#include <new>

namespace Simulation {

namespace {

std::size_t live = 0;

void* countedOrNull(std::size_t bytes) noexcept {
  void* const memory = std::malloc(bytes == 0 ? 1 : bytes);
  if (memory != nullptr) ++live;
  return memory;
}

void* counted(std::size_t bytes) {
  void* const memory = countedOrNull(bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void freed(void* memory) noexcept {
  if (memory == nullptr) return;
  --live;
  std::free(memory);
}

}  // namespace

std::size_t liveAllocations() {
  return live;
}

}  // namespace Simulation

// In the place of the standard library's, for the libraries of the program too.

__attribute__((visibility("default"))) void* operator new(std::size_t bytes) {
  return Simulation::counted(bytes);
}
__attribute__((visibility("default"))) void* operator new[](std::size_t bytes) {
  return Simulation::counted(bytes);
}
__attribute__((visibility("default"))) void* operator new(std::size_t bytes,
                                                          std::nothrow_t const&) noexcept {
  return Simulation::countedOrNull(bytes);
}
__attribute__((visibility("default"))) void operator delete(void* memory) noexcept {
  Simulation::freed(memory);
}
__attribute__((visibility("default"))) void operator delete[](void* memory) noexcept {
  Simulation::freed(memory);
}
__attribute__((visibility("default"))) void operator delete(void* memory, std::size_t) noexcept {
  Simulation::freed(memory);
}
__attribute__((visibility("default"))) void operator delete[](void* memory, std::size_t) noexcept {
  Simulation::freed(memory);
}
__attribute__((visibility("default"))) void operator delete(void* memory,
                                                            std::nothrow_t const&) noexcept {
  Simulation::freed(memory);
}
