#include "platform/mox/HashTree.h"

#include <utility>

namespace Mox {

void HashTree::insert(String8 const& key, PtrInterface& object) {
  Ptr<PtrInterface> added(&object);
  std::swap(all_[Key{key}], added);  // what it replaces goes last: it may look at the tree
}

void HashTree::remove(String8 const& key) noexcept {
  auto const gone = all_.extract(all_.find(Key{key}));
}

}  // namespace Mox
