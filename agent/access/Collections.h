#pragma once

#include <algorithm>
#include <type_traits>
#include <vector>

#include "agent/access/NaturalOrder.h"
#include "platform/mox/String8.h"

namespace Kest::Agent {

/// The collection of type `Collection` that a slice entity holds.
template <class Collection, class Entity>
auto& collectionOf(Entity& entity) {
  using Found = std::conditional_t<std::is_const_v<Entity>, Collection const, Collection>;
  Found* found = nullptr;
  entity.forEachCollection([&](auto& collection) {
    if constexpr (std::is_same_v<decltype(collection), Found&>) found = &collection;
  });
  return *found;
}

/// Orders keys as people number things.
struct NaturalOrder {
  bool operator()(Mox::String8 const& a, Mox::String8 const& b) const {
    return naturalLess(a.view(), b.view());
  }
};

inline void sortNaturally(std::vector<Mox::String8>& keys) {
  std::sort(keys.begin(), keys.end(), NaturalOrder());
}

/// The keys of that collection, in natural order.
template <class Collection, class Entity>
std::vector<Mox::String8> keysOf(Entity const& entity) {
  std::vector<Mox::String8> keys;
  for (auto it = collectionOf<Collection>(entity).iteratorConst(); it; ++it) {
    keys.push_back(it.key());
  }
  sortNaturally(keys);
  return keys;
}

}  // namespace Kest::Agent
