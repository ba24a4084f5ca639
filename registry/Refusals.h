#pragma once

#include "platform/mox/GenericIf.h"

/// What the library's adapters refuse, in the library's words.
namespace Hardware::Kest::Slice {

/// Refuses a change through a const adapter.
[[noreturn]] inline void refuseConst() {
  Mox::GenericIf::throwConstException("attempting to modify a const instance");
}

namespace detail {

/// Whether two values or objects are compared as a whole, which has the number 0.
inline bool comparesWhole(Mox::AttributeOp const& op) {
  return op.attribute == 0 && op.code == Mox::AttributeOpCode::equality;
}

/// Comes first in every adapter's `attributeOp`, before the attribute is looked at.
inline void checkOperation(Mox::GenericIf const& adapter, Mox::AttributeOp const& op,
                           Mox::GenericIf const* arg) {
  if (adapter.isConst() && op.code >= Mox::AttributeOpCode::store) refuseConst();
  if (comparesWhole(op) && (arg == nullptr || arg->type() != adapter.type())) {
    Mox::GenericIf::throwTypeException("moxOpArg");
  }
}

/// `list` as a list.
inline Mox::GenericIf::List_ const& listOf(Mox::GenericIf const& list) {
  if (list.type() != Mox::GenericIf::List_::_fwkType()) Mox::GenericIf::throwTypeException("List");
  return static_cast<Mox::GenericIf::List_ const&>(list);
}

}  // namespace detail
}  // namespace Hardware::Kest::Slice
