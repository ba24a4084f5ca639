#pragma once

#include <memory>
#include <vector>

#include "platform/mox/Attribute.h"
#include "platform/mox/String8.h"

namespace Mox {

class MoxType;

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
  bool isNamespace_ = false;
  std::vector<std::unique_ptr<TypeNode>> members_;
  MoxType const* type_ = nullptr;
  std::vector<Argument> constructor_;
  std::vector<Attribute> attributes_;
};

}  // namespace Mox
