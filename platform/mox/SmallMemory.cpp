#include "platform/mox/SmallMemory.h"

namespace Mox {

constinit decltype(SmallMemory::kept_) SmallMemory::kept_;

void SmallMemory::clear() noexcept {
  for (Kept& kept : kept_) {
    while (kept.first != nullptr) ::operator delete(std::exchange(kept.first, kept.first->next));
    kept.count = 0;
  }
}

}  // namespace Mox
