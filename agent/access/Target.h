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

  /// The path as messages have it.
  std::string shown() const { return nameText(Mox::String8(path)); }

  /// Of the value there; of a whole collection, that of its entries.
  Mox::MoxType const& type() const;

  bool isWholeCollection() const {
    return attribute != nullptr && !key &&
           attribute->introspectionClass == Mox::IntrospectionClass::collection;
  }

  /// Carries an operation out on the attribute, or the entry; yields what that yields.
  std::unique_ptr<Mox::GenericIf> operate(Mox::AttributeOpCode code,
                                          Mox::GenericIf const* argument = nullptr) const;
  /// The value there, or null when it is an entry that is absent. Not for a whole collection.
  std::unique_ptr<Mox::GenericIf> read() const;
};

/// `ControlError` of kind path, with a suggestion if there is a near one, when it leads nowhere.
Target targetAt(std::vector<Root> const& roots, std::string_view path);

/// What may stand where a path's last name or its key stands: roots, attributes, keys.
struct Continuations {
  std::string before;  // the path up to there
  OrderedKeys names;   // those too that do not begin as the path goes on
};

/// None when the path leads nowhere.
Continuations continuations(std::vector<Root> const& roots, std::string_view path);

}  // namespace Kest::Agent
