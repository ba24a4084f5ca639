#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/mox/PtrInterface.h"
#include "platform/mox/String8.h"

namespace Mox {

/// What generic tools may expect of an attribute.
enum class IntrospectionClass { scalar, enumerator, collection, handler };

/// Flag word of an attribute: `AttributeFlag`s, combined.
using AttributeFlags = std::uint32_t;
enum AttributeFlag : AttributeFlags {
  attributeVisible = 1,     // tools show it
  attributePersistent = 2,  // belongs to what is kept when the state is saved
  attributeNotifying = 4,   // changes of it are announced
  attributeWritable = 8,    // meant to be changed from outside
};

/// Named argument of a constructor or a handler; its type by full name, which need not be
/// registered.
struct Argument {
  String8 name;
  String8 typeName;
};

/// One attribute of a registered type.
struct Attribute {
  String8 name;
  AttributeId id = 0;
  MoxType const* type = nullptr;  // of the value; of a collection's members
  IntrospectionClass introspectionClass = IntrospectionClass::scalar;
  AttributeFlags flags = attributeVisible;
  String8 keyName = {};                    // collections
  MoxType const* keyType = nullptr;        // collections
  std::vector<Argument> arguments = {};    // handlers
  MoxType const* inheritedFrom = nullptr;  // null for the type's own
};

/// A place in the type tree: a namespace, or a type with what is registered of it. Types nest.
///
/// The registry owns all nodes. Pointers to attributes are valid until the type's next one.
class MOX_API TypeNode {
 public:
  TypeNode(TypeNode* parent, String8 name) noexcept;
  TypeNode(TypeNode const&) = delete;
  TypeNode& operator=(TypeNode const&) = delete;

  String8 const& name() const noexcept { return name_; }
  /// With all its scopes, as in `Hardware::Kest::FapType`; empty for the root.
  String8 fullName() const;
  /// Null for the root.
  TypeNode const* parent() const noexcept { return parent_; }
  /// In order of announcement.
  std::vector<std::unique_ptr<TypeNode>> const& members() const noexcept { return members_; }
  TypeNode* member(String8 const& name) const noexcept;

  /// Null for a namespace.
  MoxType const* type() const noexcept { return type_; }
  std::vector<Argument> const& constructorArguments() const noexcept { return constructor_; }
  /// In order of announcement, inherited ones first.
  std::vector<Attribute> const& attributes() const noexcept { return attributes_; }
  /// Null when there is none.
  Attribute const* attribute(String8 const& name) const noexcept;
  Attribute const* attribute(AttributeId id) const noexcept;

 private:
  friend class IntrospectionReactor;

  TypeNode* parent_;
  String8 name_;
  std::vector<std::unique_ptr<TypeNode>> members_;
  MoxType const* type_ = nullptr;
  std::vector<Argument> constructor_;
  std::vector<Attribute> attributes_;
};

}  // namespace Mox
