#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "platform/mox/String8.h"

namespace Mox {

class GenericIf;
class TypeNode;

/// Type object: one per named type, compared by identity, alive as long as the library that defines
/// the type is loaded.
///
/// A type with generic access makes adapters (`GenericIf`) for its values or objects, so that tools
/// without compiled knowledge of it can use them. What a type cannot make it refuses with
/// `GenericIf::throwOpNotSupportedException`, naming itself.
class MOX_API MoxType {
 public:
  enum class Kind : std::uint8_t {
    value,        // copied; printed and read as text
    enumeration,  // a value that is one of its enumerators
    entity,       // an object of the agent's state, referred to by its path
    object,       // any other counted object
    untyped,      // a pointer to anything
  };

  /// The type of a counted object.
  explicit MoxType(String8 fullName) noexcept : MoxType(std::move(fullName), Kind::object) {}
  MoxType(String8 fullName, Kind kind) noexcept : fullName_(std::move(fullName)), kind_(kind) {}
  MoxType(MoxType const&) = delete;
  MoxType& operator=(MoxType const&) = delete;
  virtual ~MoxType();

  /// With all its namespaces, as in `Fru::PciHam`.
  String8 const& fullName() const noexcept { return fullName_; }
  Kind kind() const noexcept { return kind_; }

  /// Of an enumeration: the names of its enumerators, whose values count from 0.
  virtual std::vector<String8> enumerators() const;

  /// What is registered of the type; null while it is not registered.
  TypeNode const* typeNode() const noexcept { return typeNode_; }
  void typeNodeIs(TypeNode const* node) const noexcept { typeNode_ = node; }

  // Adapters. `isConst` is the adapter's const flag.

  /// Holds a copy of `value`, which is of this type.
  virtual std::unique_ptr<GenericIf> genericIf(void const* value, bool isConst) const;
  /// Holds a copy of the value that `other` holds; a type error when that is of another type.
  virtual std::unique_ptr<GenericIf> genericIf(GenericIf const* other, bool isConst) const;
  /// Reads a whole text; `RangeException` when it is no text of a value.
  virtual std::unique_ptr<GenericIf> genericIf(String8 const& text, bool isConst) const;
  /// Holds a reference to `object`, which may be null; a type error when it is of another type.
  virtual std::unique_ptr<GenericIf> genericIf_(PtrInterface* object, bool isConst) const;

  /// Makes a new value or object from the constructor's arguments, a `GenericIf::List_` of them in
  /// order.
  virtual std::unique_ptr<GenericIf> genericIfNew(GenericIf const& arguments) const;

 private:
  String8 fullName_;
  Kind kind_;
  mutable TypeNode const* typeNode_ = nullptr;
};

/// The type object of a C++ type: its own `_fwkType()`, unless specialised beside the type.
template <class T>
struct TypeOf {
  static MoxType const* type() { return T::_fwkType(); }
};

}  // namespace Mox
