#include "registry/RecordTypes.h"

namespace Hardware::Kest::Slice {

namespace {

template <class Type>
Mox::MoxType const* typeObject() {
  static Type const type;
  return &type;
}

}  // namespace

Mox::MoxType const* KestSliceDmaConfig::SwitchPort::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* KestSliceDmaConfig::Device::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* KestSliceDmaStatus::SwitchPort::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* KestSliceDmaStatus::Device::_fwkType() {
  return typeObject<_Type>();
}

}  // namespace Hardware::Kest::Slice
