#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>

#include "platform/mox/Ptr.h"
#include "platform/mox/PtrInterface.h"
#include "platform/mox/String8.h"

namespace Mox {

/// Counted objects under string keys in the order of a `HashMap`, which changes to it when somebody
/// has chosen keys that crowd together in its table. Every operation takes logarithmic time,
/// whatever the keys are.
class MOX_API HashTree {
 public:
  std::size_t count() const noexcept { return all_.size(); }

  // Null when there is none.
  PtrInterface* first() const noexcept { return objectAt(all_.begin()); }
  PtrInterface* find(String8 const& key) const noexcept { return objectAt(all_.find({key})); }
  /// The first behind the key, whether or not that has an object.
  PtrInterface* behind(String8 const& key) const noexcept {
    return objectAt(all_.upper_bound({key}));
  }

  /// Puts the object in the place of one that has the key. Without memory the tree is as it was.
  void insert(String8 const& key, PtrInterface& object);
  /// The key must have an object.
  void remove(String8 const& key) noexcept;

 private:
  struct Key {
    String8 key;

    friend std::strong_ordering operator<=>(Key const& a, Key const& b) noexcept {
      auto const byHash = a.key.hash() <=> b.key.hash();
      return std::is_neq(byHash) ? byHash : a.key <=> b.key;
    }
  };
  using All = std::map<Key, Ptr<PtrInterface>>;

  PtrInterface* objectAt(All::const_iterator at) const noexcept {
    return at == all_.end() ? nullptr : at->second.ptr();
  }

  All all_;
};

}  // namespace Mox
