#pragma once

#include <utility>
#include <vector>

#include "platform/mox/Attribute.h"
#include "platform/mox/String8.h"

namespace Mox {

/// What is registered of a type. The registry owns it. Pointers to attributes are valid until the
/// type's next one.
class MOX_API TypeNode {
 public:
  explicit TypeNode(String8 name) noexcept : name_(std::move(name)) {}

  /// Without the scopes.
  String8 const& name() const noexcept { return name_; }
  std::vector<Argument> const& constructorArguments() const noexcept { return constructor_; }
  /// In order of announcement, inherited ones first.
  std::vector<Attribute> const& attributes() const noexcept { return attributes_; }
  /// Null when there is none.
  Attribute const* attribute(String8 const& name) const noexcept;
  Attribute const* attribute(AttributeId id) const noexcept;

 private:
  friend class IntrospectionReactor;

  String8 name_;
  std::vector<Argument> constructor_;
  std::vector<Attribute> attributes_;
};

}  // namespace Mox
