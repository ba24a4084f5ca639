#pragma once

#include <string>

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"
#include "platform/mox/GenericValue.h"

namespace Hardware::Kest::Slice {

/// All that an entity's collections hold, a line an entry.
template <class Entity>
std::string contentOf(Entity const& entity) {
  std::string text;
  entity.forEachCollection([&](auto const& collection) {
    for (auto it = collection.iteratorConst(); it; ++it) {
      text.append(collection.name).append(" ").append(it.key().view()).append(" ");
      text.append(Mox::genericStrep(it.value()).view());
      text.append("\n");
    }
  });
  if constexpr (std::is_same_v<Entity, KestSliceDmaConfig>) {
    text.append("sliceId ").append(entity.sliceId().view());
  }
  return text;
}

}  // namespace Hardware::Kest::Slice
