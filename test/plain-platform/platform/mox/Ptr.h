#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>

#include "platform/mox/PtrInterface.h"

namespace Mox {

/// Counted reference: a unique pointer to one count of the object.
template <class T>
class Ptr {
 public:
  Ptr() = default;
  Ptr(std::nullptr_t) {}
  Ptr(T* object) : object_(object) {
    if (object != nullptr) object->referenceNew();
  }
  Ptr(Ptr const& other) : Ptr(other.ptr()) {}
  Ptr(Ptr&& other) = default;
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  Ptr(Ptr<U> const& other) : Ptr(other.ptr()) {}

  Ptr& operator=(Ptr other) {
    object_.swap(other.object_);
    return *this;
  }

  T* ptr() const { return object_.get(); }
  T* operator->() const { return ptr(); }
  T& operator*() const { return *ptr(); }
  explicit operator bool() const { return ptr() != nullptr; }

  template <class U>
  friend bool operator==(Ptr const& a, Ptr<U> const& b) {
    return a.ptr() == b.ptr();
  }
  friend bool operator==(Ptr const& a, std::nullptr_t) { return a.ptr() == nullptr; }

 private:
  struct Release {
    void operator()(T* object) const { object->referenceDel(); }
  };
  std::unique_ptr<T, Release> object_;
};

template <class T, class U>
Ptr<T> ptrCast(Ptr<U> const& from) {
  return Ptr<T>(dynamic_cast<T*>(from.ptr()));
}

}  // namespace Mox
