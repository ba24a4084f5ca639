#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "agent/access/OrderedKeys.h"
#include "agent/access/ValueText.h"
#include "platform/mox/GenericIf.h"
#include "platform/mox/String8.h"
#include "platform/mox/TypeNode.h"

namespace Kest::Agent {

/// An object that paths start from. Each request gets an adapter of its own.
struct Root {
  std::string name;
  std::function<std::unique_ptr<Mox::GenericIf>()> adapter;
};

/// What a path of the control protocol leads to: an object, one of its attributes, an entry of a
/// collection, or a field of such an entry's record.
struct Target {
  std::string path;
  std::unique_ptr<Mox::GenericIf> object;
  Mox::Attribute const* attribute = nullptr;  // null: the object itself
  std::optional<Mox::String8> key;            // of a collection's entry, which may be absent
  Mox::Attribute const* field = nullptr;      // of the entry, which is there

  /// The path as messages show it.
  std::string shown() const { return nameText(Mox::String8(path)); }

  /// The type of the value there; for a whole collection, the type of its entries.
  Mox::MoxType const& type() const;

  bool isWholeCollection() const {
    return attribute != nullptr && !key &&
           attribute->introspectionClass == Mox::IntrospectionClass::collection;
  }

  /// Carries out an operation on the attribute or the entry, and returns its result.
  std::unique_ptr<Mox::GenericIf> operate(Mox::AttributeOpCode code,
                                          Mox::GenericIf const* argument = nullptr) const;
  /// The value there; null for an entry that is absent. Not for a whole collection.
  std::unique_ptr<Mox::GenericIf> read() const;
};

/// @throw ControlError of kind path when the path leads nowhere; it suggests a near name if there
/// is one
Target targetAt(std::vector<Root> const& roots, std::string_view path);

/// What the last part of a path may be: roots, attributes or keys.
struct Continuations {
  std::string before;  // the path without its last part
  OrderedKeys names;   // all of them, whatever the last part begins with
};

/// None when the path leads nowhere.
Continuations continuations(std::vector<Root> const& roots, std::string_view path);

}  // namespace Kest::Agent
