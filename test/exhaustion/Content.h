#pragma once

#include <string>

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"
#include "model/detail/RecordText.h"

namespace Hardware::Kest::Slice {

/// All that an entity's collections hold, a line an entry.
template <class Entity>
std::string contentOf(Entity const& entity) {
  std::string text;
  entity.forEachCollection([&](auto const& collection) {
    for (auto it = collection.iteratorConst(); it; ++it) {
      text.append(collection.name).append(" ").append(it.key().view()).append(" ");
      if constexpr (std::is_same_v<decltype(it.value()), std::uint16_t const&>) {
        text.append(std::to_string(it.value()));
      } else {
        text.append(detail::fieldToStrep(it.value()).view());
      }
      text.append("\n");
    }
  });
  if constexpr (std::is_same_v<Entity, KestSliceDmaConfig>) {
    text.append("sliceId ").append(entity.sliceId().view());
  }
  return text;
}

}  // namespace Hardware::Kest::Slice
