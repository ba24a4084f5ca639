#include "registry/RecordTypes.h"

namespace Hardware::Kest::Slice {

namespace {

template <class Type>
Mox::MoxType const* typeObject() {
  static Type const type;
  return &type;
}

}  // namespace

Mox::MoxType const* ConfigSwitchPort::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* ConfigDevice::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* StatusSwitchPort::_fwkType() {
  return typeObject<_Type>();
}

Mox::MoxType const* StatusDevice::_fwkType() {
  return typeObject<_Type>();
}

}  // namespace Hardware::Kest::Slice
