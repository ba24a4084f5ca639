#include "registry/EntityTypes.h"
#include "registry/RecordTypes.h"
#include "registry/SmType.h"

namespace Hardware::Kest::Slice {

namespace {

/// The one type object of that class, made on first use.
template <class Type>
Mox::MoxType const* typeObject() {
  static Type const type;
  return &type;
}

}  // namespace

Mox::MoxType const* DeviceState_fwkType() {
  return typeObject<DeviceState_Type>();
}

Mox::MoxType const* KestSliceDmaConfig::SwitchPort::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* KestSliceDmaConfig::Device::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* KestSliceDmaConfig::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* KestSliceDmaStatus::SwitchPort::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* KestSliceDmaStatus::Device::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* KestSliceDmaStatus::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* KestSliceDmaSm::_fwkType() {
  return typeObject<_Type>();
}

}  // namespace Hardware::Kest::Slice
