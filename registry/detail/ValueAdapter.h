#pragma once

#include <memory>
#include <utility>

#include "platform/mox/GenericValue.h"
#include "registry/Refusals.h"

namespace Hardware::Kest::Slice::detail {

/// Adapter of a value of the library, which can be replaced as a whole. `Base` is the framework's
/// adapter of such a value.
template <class T, class Base = Mox::GenericValue<T>>
class ValueAdapter : public Base {
 public:
  using Base::Base;

  /// The value, to write to; `wanted` is the type that the caller takes it for.
  void* voidPtrIs(Mox::MoxType const* wanted) {
    if (this->isConst()) refuseConst();
    if (wanted != this->type()) Mox::GenericIf::throwTypeException(wanted->fullName());
    return &this->value();
  }
  void valIs(T value) { *static_cast<T*>(voidPtrIs(this->type())) = std::move(value); }

  void attributeOp(Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                   std::unique_ptr<Mox::GenericIf>& result) override {
    checkOperation(*this, op, arg);
    Base::attributeOp(op, arg, result);
  }
};

}  // namespace Hardware::Kest::Slice::detail
