#include "agent/access/OrderedKeys.h"

#include <cstddef>

namespace Kest::Agent {

namespace {

/// How many short keys are gathered in a step; a long one counts as several, since keys that begin
/// alike are compared byte by byte.
constexpr std::size_t keysInAStep = 256;
constexpr std::size_t shortKey = 64;

}  // namespace

bool OrderedKeys::gather() {
  std::size_t gathered = 0;
  while (!sources_.empty() && gathered < keysInAStep) {
    if (std::optional<Mox::String8> key = sources_.back()()) {
      gathered += 1 + key->bytes() / shortKey;
      keys_.insert(*std::move(key));
    } else {
      sources_.pop_back();
    }
  }
  return !sources_.empty();
}

std::size_t heldBy(std::vector<std::shared_ptr<OrderedKeys const>> const& all) {
  std::size_t bytes = 0;
  for (auto const& keys : all) bytes += keys->held();
  return bytes;
}

std::optional<Mox::String8> OrderedKeys::take() {
  if (keys_.empty()) return std::nullopt;
  return std::move(keys_.extract(keys_.begin()).value());
}

}  // namespace Kest::Agent
