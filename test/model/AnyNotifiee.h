#pragma once

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"

namespace Hardware::Kest::Slice {

/// Observer base of either entity, with the handlers of both: a status never calls `onSliceId`.
template <class Entity>
class AnyNotifiee : public Entity::Notifiee {
 public:
  virtual void onSliceId() {}
};
template <>
class AnyNotifiee<KestSliceDmaConfig> : public KestSliceDmaConfig::Notifiee {};

}  // namespace Hardware::Kest::Slice
