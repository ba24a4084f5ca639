#pragma once

#include <cstddef>
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

/// The attributes of one type, in order of announcement.
///
/// They are found by name through a hash table of their places, built anew with every change: names
/// are asked for all the time, types change while they are registered. Out of the hash it takes
/// those bits that keep the names apart, so that the first place looked at is nearly always the
/// one. A walk along the list instead makes a generic read by name take 1.7 times as long.
class MOX_API AttributeList {
 public:
  std::vector<Attribute> const& all() const noexcept { return all_; }
  /// Null when there is none.
  Attribute const* find(String8 const& name) const noexcept;
  Attribute const* find(AttributeId id) const noexcept;

  /// Neither its name nor its number may be taken. Without memory nothing has changed.
  void add(Attribute attribute);
  void inheritedDel(String8 const& name) noexcept;

 private:
  using Place = std::uint32_t;
  static constexpr Place none = static_cast<Place>(-1);

  std::size_t firstPlace(String8 const& name) const noexcept {
    return name.hash() >> shift_ & (places_.size() - 1);
  }
  std::size_t nextPlace(std::size_t at) const noexcept { return (at + 1) & (places_.size() - 1); }
  void placesAreFilled() noexcept;
  /// False when two attributes have the same first place.
  bool placesAreFilled(unsigned shift) noexcept;

  std::vector<Attribute> all_;
  std::vector<Place> places_;  // a power of two of them, half of them `none` at least; or no more
  unsigned shift_ = 0;
};

}  // namespace Mox
