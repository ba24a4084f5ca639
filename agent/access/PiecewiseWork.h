#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "agent/access/OrderedKeys.h"

namespace Kest::Agent {

/// Long work in small steps, so that others get their turn in between. It has parts, which are done
/// one after the other.
class PiecewiseWork {
 public:
  /// Takes one small step. Returns how many entries it was about, at least 1; 0 when the part is
  /// done.
  using Part = std::function<std::size_t()>;

  void add(Part part) { parts_.push_back(std::move(part)); }
  /// A part that calls `visit` with each key, in order.
  void addVisits(OrderedKeys keys, std::function<void(Mox::String8 const& key)> visit);

  /// Takes steps until they were about that many entries; false when all parts are done.
  bool take(std::size_t entries);

  /// About how many bytes of memory the keys take that are still to be visited.
  std::size_t held() const;

 private:
  std::deque<Part> parts_;
  std::vector<std::shared_ptr<OrderedKeys const>> keys_;
};

}  // namespace Kest::Agent
