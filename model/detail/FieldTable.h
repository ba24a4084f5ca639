#pragma once

#include <cstddef>
#include <tuple>

#include "platform/mox/PtrInterface.h"

/// The field table of a record: what each record says about its fields once, and from which its
/// text form, its parser and its attribute numbers are derived.
///
/// A record holds its values in an aggregate `Fields` and lists them, in declaration order, in
/// `fieldTable()`.
namespace Hardware::Kest::Slice::detail {

/// Attribute number of a record's first field; the others follow in declaration order.
inline constexpr Mox::AttributeId firstFieldAttributeId = 2;

template <class Fields, class T>
struct Field {
  char const* name;
  T Fields::*member;
};

template <class Fields, class T>
constexpr Field<Fields, T> field(char const* name, T Fields::*member) {
  return {name, member};
}

/// Calls `visit(field)` for each field of the table, in order.
template <class Record, class Visit>
constexpr void forEachField(Visit visit) {
  std::apply([&](auto const&... fields) { (visit(fields), ...); }, Record::fieldTable());
}

/// Stands for a value of whatever type is asked for.
struct Anything {
  template <class T>
  operator T() const;
};

/// How many members an aggregate has: the most initialisers that it takes.
template <class Aggregate, class... Initialisers>
constexpr std::size_t memberCount() {
  if constexpr (requires { Aggregate{Initialisers{}..., Anything{}}; }) {
    return memberCount<Aggregate, Initialisers..., Anything>();
  } else {
    return sizeof...(Initialisers);
  }
}

/// Whether the record's table names as many fields as there are.
template <class Record>
constexpr bool isComplete() {
  return memberCount<typename Record::Fields>() ==
         std::tuple_size_v<decltype(Record::fieldTable())>;
}

}  // namespace Hardware::Kest::Slice::detail
