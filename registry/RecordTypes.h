#pragma once

#include "model/ConfigRecords.h"
#include "model/StatusRecords.h"
#include "registry/DeviceStateType.h"
#include "registry/detail/RecordAdapter.h"

/// Type objects and adapters of the four records.
namespace Hardware::Kest::Slice {

class ConfigSwitchPort::GenericIf_ final : public detail::RecordAdapter<ConfigSwitchPort> {
 public:
  using RecordAdapter::RecordAdapter;
};
class ConfigSwitchPort::_Type final : public detail::RecordType<ConfigSwitchPort> {};

class ConfigDevice::GenericIf_ final : public detail::RecordAdapter<ConfigDevice> {
 public:
  using RecordAdapter::RecordAdapter;
};
class ConfigDevice::_Type final : public detail::RecordType<ConfigDevice> {};

class StatusSwitchPort::GenericIf_ final : public detail::RecordAdapter<StatusSwitchPort> {
 public:
  using RecordAdapter::RecordAdapter;
};
class StatusSwitchPort::_Type final : public detail::RecordType<StatusSwitchPort> {};

class StatusDevice::GenericIf_ final : public detail::RecordAdapter<StatusDevice> {
 public:
  using RecordAdapter::RecordAdapter;
};
class StatusDevice::_Type final : public detail::RecordType<StatusDevice> {};

}  // namespace Hardware::Kest::Slice
