#pragma once

#include "model/ConfigRecords.h"
#include "model/StatusRecords.h"
#include "registry/DeviceStateType.h"
#include "registry/detail/RecordAdapter.h"

/// Type objects and adapters of the four records.
namespace Hardware::Kest::Slice {

class KEST_SLICE_DMA_API ConfigSwitchPort::GenericIf_ final
    : public detail::RecordAdapter<ConfigSwitchPort> {
 public:
  using RecordAdapter::RecordAdapter;
};
class KEST_SLICE_DMA_API ConfigSwitchPort::_Type final
    : public detail::RecordType<ConfigSwitchPort> {};

class KEST_SLICE_DMA_API ConfigDevice::GenericIf_ final
    : public detail::RecordAdapter<ConfigDevice> {
 public:
  using RecordAdapter::RecordAdapter;
};
class KEST_SLICE_DMA_API ConfigDevice::_Type final : public detail::RecordType<ConfigDevice> {};

class KEST_SLICE_DMA_API StatusSwitchPort::GenericIf_ final
    : public detail::RecordAdapter<StatusSwitchPort> {
 public:
  using RecordAdapter::RecordAdapter;
};
class KEST_SLICE_DMA_API StatusSwitchPort::_Type final
    : public detail::RecordType<StatusSwitchPort> {};

class KEST_SLICE_DMA_API StatusDevice::GenericIf_ final
    : public detail::RecordAdapter<StatusDevice> {
 public:
  using RecordAdapter::RecordAdapter;
};
class KEST_SLICE_DMA_API StatusDevice::_Type final : public detail::RecordType<StatusDevice> {};

}  // namespace Hardware::Kest::Slice
