#pragma once

#include <algorithm>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "agent/access/OrderedKeys.h"

namespace Kest::Agent {

/// Long work in bounded steps, so that others get their turn in between. It has parts, which are
/// done one after the other.
class Steps {
 public:
  /// Takes one bounded step. Returns how many entries it was about, at least 1; 0 when the part is
  /// done.
  using Part = std::function<std::size_t()>;

  void add(Part part) { parts_.push_back(std::move(part)); }

  /// A part that calls `visit` with each key, in order.
  template <class Visit>
  void addVisits(OrderedKeys keys, Visit visit) {
    auto const shared = std::make_shared<OrderedKeys>(std::move(keys));
    keys_.push_back(shared);
    add([shared, visit, isGathered = false]() mutable -> std::size_t {
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

  /// Takes steps of about as many entries, or fewer when everything is done before; false when it
  /// is.
  bool take(std::size_t entries) {
    while (entries > 0 && !parts_.empty()) {
      std::size_t const done = parts_.front()();
      if (done == 0) parts_.pop_front();
      entries -= std::min(done, entries);
    }
    return !parts_.empty();
  }

  /// About how many bytes of memory the keys take that are still to be visited.
  std::size_t held() const { return heldBy(keys_); }

 private:
  std::deque<Part> parts_;
  std::vector<std::shared_ptr<OrderedKeys const>> keys_;
};

}  // namespace Kest::Agent
