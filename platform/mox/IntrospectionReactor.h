#pragma once

#include <map>
#include <set>
#include <vector>

#include "platform/mox/MoxType.h"
#include "platform/mox/TypeNode.h"

namespace Mox {

/// The type registry. Libraries announce their types to it when they are loaded; generic tools ask
/// it what there is.
///
/// What cannot be announced (a name or number that is taken, a scope that is not there) is a
/// `RangeException`. A library withdraws its types (`typeDel`) when it is unloaded, so that the
/// registry never knows a type object that is gone.
class MOX_API IntrospectionReactor {
 public:
  /// The one of the process; it lives to the end.
  static IntrospectionReactor& global();

  IntrospectionReactor();
  /// Withdraws what is left; those types are still there.
  ~IntrospectionReactor();
  IntrospectionReactor(IntrospectionReactor const&) = delete;
  IntrospectionReactor& operator=(IntrospectionReactor const&) = delete;

  // Announcements.

  /// A namespace, given with its scopes (`Hardware::Kest`), which are there already. It may be
  /// announced again, and stays for good.
  void onNamespace(String8 const& fullName);
  /// A type, in the namespace or type that its full name gives. A type is in one registry; what it
  /// is made of may be registered elsewhere.
  void onType(MoxType const& type);
  void onConstructorArgument(MoxType const& type, Argument argument);
  void onAttribute(MoxType const& type, Attribute attribute);
  /// Every attribute of `base`, in its order, as inherited.
  void onInheritedAttributes(MoxType const& type, MoxType const& base);
  /// An enumeration's enumerators as attributes whose numbers are their values, then the attribute
  /// `value` that every enumeration has.
  void onEnumerators(MoxType const& type);
  /// A collection of records under one of their own fields: `keyName` is an attribute of
  /// `attribute.type`, which gives the key's type. An inherited attribute of the same name is
  /// dropped first.
  void onRecordCollection(MoxType const& type, Attribute attribute, String8 const& keyName);

  /// Withdraws a type and what is registered of it.
  void typeDel(MoxType const& type) noexcept;

  // What there is.

  bool hasNamespace(String8 const& fullName) const { return namespaces_.contains(fullName); }
  /// In order of announcement.
  std::vector<MoxType const*> const& types() const noexcept { return types_; }
  /// Null when no type has that full name.
  MoxType const* type(String8 const& fullName) const noexcept;

 private:
  /// Refuses a name that is empty or has no scope that is there.
  void checkScope(String8 const& fullName) const;
  /// The registered description of a type. Refuses a type that is not in this registry.
  TypeNode& nodeOf(MoxType const& type);

  std::set<String8> namespaces_;
  std::vector<MoxType const*> types_;
  std::map<MoxType const*, TypeNode> nodes_;
};

}  // namespace Mox
