#pragma once

#include <type_traits>

#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"

namespace Hardware::Kest::Slice::detail {

template <class T>
struct Held {
  static Mox::MoxType const* type() { return Mox::TypeOf<T>::type(); }
  static T const& of(Mox::GenericIf const* generic, auto const& name) {
    auto const* const value = Mox::genericVal<T>(generic);
    if (value == nullptr) Mox::GenericIf::throwTypeException(name);
    return *value;
  }
};
template <class T>
struct Held<Mox::Ptr<T>> {
  static Mox::MoxType const* type() { return Mox::TypeOf<std::remove_const_t<T>>::type(); }
  static Mox::Ptr<T> of(Mox::GenericIf const* generic, auto const& name) {
    bool isReference = false;
    auto reference = Mox::genericRef<T>(generic, isReference);
    if (!isReference) Mox::GenericIf::throwTypeException(name);
    return reference;
  }
};

/// The type of a value, or of what a `Ptr` refers to.
template <class T>
Mox::MoxType const* typeOf() {
  return Held<T>::type();
}

/// The value or reference that `generic` holds, a `T`. Refused by `name` when it is missing or of
/// another type. A reference may be null; one to a constant object does for a `Ptr<T const>` alone.
template <class T>
decltype(auto) held(Mox::GenericIf const* generic, auto const& name) {
  return Held<T>::of(generic, name);
}

}  // namespace Hardware::Kest::Slice::detail
