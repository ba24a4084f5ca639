#include "test/simulation/Allocations.h"

#include <cstdlib>

#include "test/support/Allocation.h"

namespace Simulation {

static std::size_t live = 0;

std::size_t liveAllocations() {
  return live;
}

}  // namespace Simulation

void* Test::allocated(std::size_t bytes) noexcept {
  void* const memory = std::malloc(bytes);
  if (memory != nullptr) ++Simulation::live;
  return memory;
}

void Test::freed(void* memory) noexcept {
  if (memory == nullptr) return;
  --Simulation::live;
  std::free(memory);
}
