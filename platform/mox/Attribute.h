#pragma once

#include <cstdint>
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

}  // namespace Mox
