#include "agent/access/PiecewiseWork.h"

#include <algorithm>
#include <optional>

namespace Kest::Agent {

void PiecewiseWork::addVisits(OrderedKeys keys,
                              std::function<void(Mox::String8 const& key)> visit) {
  // Shared, since a function must be copyable and keys may be many.
  auto const shared = std::make_shared<OrderedKeys>(std::move(keys));
  keys_.push_back(shared);
  add([shared, visit = std::move(visit), isGathered = false]() mutable -> std::size_t {
    if (!isGathered) {
      std::size_t const before = shared->count();
      isGathered = !shared->gather();
      return 1 + shared->count() - before;
    }
    std::optional<Mox::String8> const key = shared->take();
    if (key) visit(*key);
    return key ? 1 : 0;
  });
}

bool PiecewiseWork::take(std::size_t entries) {
  while (entries > 0 && !parts_.empty()) {
    std::size_t const done = parts_.front()();
    if (done == 0) parts_.pop_front();
    entries -= std::min(done, entries);
  }
  return !parts_.empty();
}

std::size_t PiecewiseWork::held() const {
  std::size_t bytes = 0;
  for (auto const& keys : keys_) bytes += keys->held();
  return bytes;
}

}  // namespace Kest::Agent
