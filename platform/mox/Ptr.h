#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "platform/mox/PtrInterface.h"

namespace Mox {

/// Counted reference to a framework object. Null by default; taking a raw pointer adds a reference,
/// so `Ptr<T>(new T(...))` is how an object starts to be owned.
template <class T>
class Ptr {
 public:
  Ptr() noexcept = default;
  Ptr(std::nullptr_t) noexcept {}
  Ptr(T* object) noexcept : object_(object) { take(); }
  Ptr(Ptr const& other) noexcept : object_(other.object_) { take(); }
  Ptr(Ptr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  Ptr(Ptr<U> const& other) noexcept : Ptr(other.ptr()) {}
  ~Ptr() {
    if (object_ != nullptr) object_->referenceDel();
  }

  Ptr& operator=(Ptr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  T* ptr() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  template <class U>
  friend bool operator==(Ptr const& a, Ptr<U> const& b) noexcept {
    return a.ptr() == b.ptr();
  }
  friend bool operator==(Ptr const& a, std::nullptr_t) noexcept { return a.object_ == nullptr; }

 private:
  void take() const noexcept {
    if (object_ != nullptr) object_->referenceNew();
  }

  T* object_ = nullptr;
};

/// Narrows to another object type; null when the object is not one.
template <class T, class U>
Ptr<T> ptrCast(Ptr<U> const& from) noexcept {
  return Ptr<T>(dynamic_cast<T*>(from.ptr()));
}

}  // namespace Mox
