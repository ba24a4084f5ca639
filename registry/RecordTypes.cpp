#include "registry/RecordTypes.h"

namespace Hardware::Kest::Slice {

void detail::refuseField(char const* name, Mox::AttributeOp const& op) {
  if (op.code != Mox::AttributeOpCode::read) {
    Mox::GenericIf::throwOpNotSupportedException(name, op.code);
  }
  Mox::GenericIf::throwBadIndexAttrException(name);
}

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
