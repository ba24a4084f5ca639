#pragma once

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"
#include "registry/DeviceStateType.h"
#include "registry/detail/RecordAdapter.h"

/// Type objects and adapters of the four records.
namespace Hardware::Kest::Slice {

class KEST_SLICE_DMA_API KestSliceDmaConfig::SwitchPort::GenericIf_ final
    : public detail::RecordAdapter<KestSliceDmaConfig::SwitchPort> {
 public:
  using RecordAdapter::RecordAdapter;
};
class KEST_SLICE_DMA_API KestSliceDmaConfig::SwitchPort::_Type final
    : public detail::RecordType<KestSliceDmaConfig::SwitchPort> {};

class KEST_SLICE_DMA_API KestSliceDmaConfig::Device::GenericIf_ final
    : public detail::RecordAdapter<KestSliceDmaConfig::Device> {
 public:
  using RecordAdapter::RecordAdapter;
};
class KEST_SLICE_DMA_API KestSliceDmaConfig::Device::_Type final
    : public detail::RecordType<KestSliceDmaConfig::Device> {};

class KEST_SLICE_DMA_API KestSliceDmaStatus::SwitchPort::GenericIf_ final
    : public detail::RecordAdapter<KestSliceDmaStatus::SwitchPort> {
 public:
  using RecordAdapter::RecordAdapter;
};
class KEST_SLICE_DMA_API KestSliceDmaStatus::SwitchPort::_Type final
    : public detail::RecordType<KestSliceDmaStatus::SwitchPort> {};

class KEST_SLICE_DMA_API KestSliceDmaStatus::Device::GenericIf_ final
    : public detail::RecordAdapter<KestSliceDmaStatus::Device> {
 public:
  using RecordAdapter::RecordAdapter;
};
class KEST_SLICE_DMA_API KestSliceDmaStatus::Device::_Type final
    : public detail::RecordType<KestSliceDmaStatus::Device> {};

}  // namespace Hardware::Kest::Slice
