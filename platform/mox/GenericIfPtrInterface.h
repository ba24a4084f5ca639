#pragma once

#include <memory>
#include <utility>

#include "platform/mox/GenericIf.h"
#include "platform/mox/Ptr.h"

namespace Mox {

/// Adapter of a counted object, or of a null reference to one. Two are equal when they refer to the
/// same object.
class MOX_API GenericIfPtrInterface : public GenericIf {
 public:
  /// A type error when the object is not of `type`.
  /// @param type of the object, or of the reference when it is null
  GenericIfPtrInterface(MoxType const* type, PtrInterface* object, bool isConst);
  ~GenericIfPtrInterface() override;

  /// Not to be changed through a const adapter.
  Ptr<PtrInterface> const& object() const noexcept { return object_; }

  std::unique_ptr<GenericIf> clone() const override;
  /// A reference's text form; `ObjectPtr('Type')` for an object that is no entity.
  String8 strRep() const override;
  void attributeOp(AttributeOp const& op, GenericIf const* arg,
                   std::unique_ptr<GenericIf>& result) override;

 protected:
  /// The object, which must be of the adapter's type; refused when the reference is null.
  template <class T>
  T& objectAs() const {
    if (!object_) throwNotBoundException(type()->fullName());
    return static_cast<T&>(*object_);
  }

 private:
  Ptr<PtrInterface> object_;
};

/// The adapter of a reference, made by its type object; constant if the reference is to a constant
/// object.
template <class T>
std::unique_ptr<GenericIf> genericOf(Ptr<T> const& reference) {
  using Object = std::remove_const_t<T>;
  return Object::_fwkType()->genericIf_(const_cast<Object*>(reference.ptr()), std::is_const_v<T>);
}

/// What an adapter refers to, if that is of `T`'s type, and `T` constant if the adapter is;
/// `isReference` tells a null reference from an adapter of something else.
template <class T>
Ptr<T> genericRef(GenericIf const* generic, bool& isReference) {
  isReference = generic != nullptr && generic->type() == TypeOf<std::remove_const_t<T>>::type() &&
                (std::is_const_v<T> || !generic->isConst());
  if (!isReference) return nullptr;
  return ptrCast<T>(static_cast<GenericIfPtrInterface const*>(generic)->object());
}

}  // namespace Mox
