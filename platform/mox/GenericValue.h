#pragma once

#include <concepts>
#include <memory>
#include <utility>

#include "platform/mox/GenericIf.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/Strep.h"

namespace Mox {

/// Text form of any value that a library of the platform knows how to print.
template <class T>
String8 genericStrep(T const& value) {
  if constexpr (std::unsigned_integral<T> && !std::same_as<T, bool>) {
    return valueToStrep(static_cast<unsigned long long>(value));
  } else {
    return valueToStrep(value);
  }
}

/// Adapter of a value of type `T`, which can be copied, compared, printed and read, and has a type
/// object (`TypeOf<T>`).
template <class T>
class GenericValue : public GenericIf {
 public:
  GenericValue(T value, bool isConst)
      : GenericIf(TypeOf<T>::type(), isConst), value_(std::move(value)) {}

  T const& val() const noexcept { return value_; }

  void const* voidPtr() const override { return &value_; }
  std::unique_ptr<GenericIf> clone() const override {
    return type()->genericIf(&value_, isConst());
  }
  String8 strRep() const override { return genericStrep(value_); }

  void attributeOp(AttributeOp const& op, GenericIf const* arg,
                   std::unique_ptr<GenericIf>& result) override;

 protected:
  T& value() noexcept { return value_; }

 private:
  T value_;
};

/// The adapter of a value, as its type object makes it.
template <class T>
std::unique_ptr<GenericIf> genericOf(T const& value, bool isConst = true) {
  return TypeOf<T>::type()->genericIf(&value, isConst);
}

/// The value that an adapter holds if it is a `T`; otherwise null, as for no adapter.
template <class T>
T const* genericVal(GenericIf const* generic) {
  if (generic == nullptr || generic->type() != TypeOf<T>::type()) return nullptr;
  return static_cast<T const*>(generic->voidPtr());
}

template <class T>
void GenericValue<T>::attributeOp(AttributeOp const& op, GenericIf const* arg,
                                  std::unique_ptr<GenericIf>& result) {
  if (op.attribute != wholeAttributeId || op.code != AttributeOpCode::equality) {
    GenericIf::attributeOp(op, arg, result);
    return;
  }
  auto const* const other = genericVal<T>(arg);
  if (other == nullptr) throwTypeException(type()->fullName());
  result = genericOf<bool>(value_ == *other);
}

/// Type object of a value type. `Adapter` is `GenericValue<T>` or derived from it.
template <class T, class Adapter = GenericValue<T>>
class ValueType : public MoxType {
 public:
  explicit ValueType(String8 fullName) noexcept : ValueType(std::move(fullName), Kind::value) {}

  std::unique_ptr<GenericIf> genericIf(void const* value, bool isConst) const override {
    return std::make_unique<Adapter>(*static_cast<T const*>(value), isConst);
  }
  std::unique_ptr<GenericIf> genericIf(GenericIf const* other, bool isConst) const override {
    auto const* const value = genericVal<T>(other);
    if (value == nullptr) GenericIf::throwTypeException(fullName());
    return genericIf(static_cast<void const*>(value), isConst);
  }
  std::unique_ptr<GenericIf> genericIf(String8 const& text, bool isConst) const override {
    return std::make_unique<Adapter>(strepToValue(text, static_cast<T const*>(nullptr)), isConst);
  }
  std::unique_ptr<GenericIf> genericIfNew(GenericIf const& arguments) const override {
    return Adapter(T(), true).genericIfListConstructor(arguments);
  }

 protected:
  ValueType(String8 fullName, Kind kind) noexcept : MoxType(std::move(fullName), kind) {}
};

// The platform's basic types.

template <>
struct MOX_API TypeOf<bool> {
  static MoxType const* type();
};
template <>
struct MOX_API TypeOf<std::uint16_t> {
  static MoxType const* type();
};
template <>
struct MOX_API TypeOf<std::uint32_t> {
  static MoxType const* type();
};
template <>
struct MOX_API TypeOf<unsigned long long> {
  static MoxType const* type();
};
template <>
struct MOX_API TypeOf<double> {
  static MoxType const* type();
};
template <>
struct MOX_API TypeOf<String8> {
  static MoxType const* type();
};

/// The type of whatever has no value to hand out, such as a handler.
MOX_API MoxType const* untypedPointer();

}  // namespace Mox
