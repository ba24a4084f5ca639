#pragma once

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"
#include "registry/RecordTypes.h"
#include "registry/detail/EntityAdapter.h"

/// Type objects and adapters of the two entities.
namespace Hardware::Kest::Slice {

class KEST_SLICE_DMA_API KestSliceDmaConfig::GenericIf_ final
    : public detail::EntityAdapter<KestSliceDmaConfig> {
 public:
  using EntityAdapter::EntityAdapter;
};
class KEST_SLICE_DMA_API KestSliceDmaConfig::_Type final
    : public detail::EntityTypeObject<KestSliceDmaConfig> {};

class KEST_SLICE_DMA_API KestSliceDmaStatus::GenericIf_ final
    : public detail::EntityAdapter<KestSliceDmaStatus> {
 public:
  using EntityAdapter::EntityAdapter;
};
class KEST_SLICE_DMA_API KestSliceDmaStatus::_Type final
    : public detail::EntityTypeObject<KestSliceDmaStatus> {};

}  // namespace Hardware::Kest::Slice
