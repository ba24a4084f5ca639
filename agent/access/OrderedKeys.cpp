#include "agent/access/OrderedKeys.h"

#include "platform/mox/GenericValue.h"

namespace Kest::Agent {

namespace {

/// How many short keys are gathered in a step. A long key counts as several, because keys that
/// begin alike are compared byte by byte.
constexpr std::size_t keysInAStep = 256;
constexpr std::size_t shortKey = 64;

}  // namespace

void OrderedKeys::add(std::shared_ptr<Mox::AttributeIterator> entries) {
  add([entries = std::move(entries)]() -> std::optional<Mox::String8> {
    if (!*entries) return std::nullopt;
    Mox::String8 key = *Mox::genericVal<Mox::String8>(entries->key().get());
    ++*entries;
    return key;
  });
}

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

std::optional<Mox::String8> OrderedKeys::take() {
  if (keys_.empty()) return std::nullopt;
  return std::move(keys_.extract(keys_.begin()).value());
}

}  // namespace Kest::Agent
