#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>

#include "model/detail/FieldTable.h"
#include "model/detail/RecordText.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"

/// Generic access to records, by their field tables.
namespace Hardware::Kest::Slice::detail {

/// Calls `visit(field, attributeId)` for each field of the record, in order.
template <class Record, class Visit>
void forEachFieldAttribute(Visit visit) {
  Mox::AttributeId id = firstFieldAttributeId;
  forEachField<Record>([&](auto const& field) { visit(field, id++); });
}

/// Puts the value that `item` holds into `field`; refused, by the field's name, when it is of
/// another type.
template <class T>
void takeField(T& field, Mox::GenericIf const* item, char const* name) {
  auto const* const value = Mox::genericVal<T>(item);
  if (value == nullptr) Mox::GenericIf::throwTypeException(name);
  field = *value;
}

template <class T>
void takeField(Mox::Ptr<T>& field, Mox::GenericIf const* item, char const* name) {
  bool isReference = false;
  auto const reference = Mox::genericRef<T>(item, isReference);
  if (!isReference) Mox::GenericIf::throwTypeException(name);
  field = reference;
}

/// A variant of pointers to the members that a field table lists, each type of member once.
template <class Known, class... Rest>
struct MembersOf {
  using Variant = Known;
};
template <class... Known, class Fields, class T, class... Rest>
struct MembersOf<std::variant<Known...>, Field<Fields, T>, Rest...>
    : std::conditional_t<(std::is_same_v<Known, T Fields::*> || ...),
                         MembersOf<std::variant<Known...>, Rest...>,
                         MembersOf<std::variant<Known..., T Fields::*>, Rest...>> {};

/// The fields of a record by attribute number.
///
/// They are read by one function for each type, not each field, of which a processor guesses the
/// right one more often: reads of fields in random order take 0.8 of the time.
template <class Record>
class FieldsById {
 public:
  using Fields = typename Record::Fields;

  /// Null when no field has that number.
  static auto const* find(Mox::AttributeId id) {
    Mox::AttributeId const at = id - firstFieldAttributeId;  // huge for what comes before
    return at < all.size() ? &all[at] : nullptr;
  }

 private:
  template <class... AnyField>
  static constexpr auto fieldsOf(AnyField const&... field) {
    struct AField {
      char const* name;
      typename MembersOf<std::variant<>, AnyField...>::Variant member;
    };
    return std::array{AField{field.name, field.member}...};
  }

  static constexpr auto all =
      std::apply([](auto const&... field) { return fieldsOf(field...); }, Record::fieldTable());
};

/// What a field refuses: every operation but a read, and an index.
[[noreturn]] inline void refuseField(char const* name, Mox::AttributeOp const& op) {
  if (op.code != Mox::AttributeOpCode::read) {
    Mox::GenericIf::throwOpNotSupportedException(name, op.code);
  }
  Mox::GenericIf::throwBadIndexAttrException(name);
}

/// Adapter of a record. Fields can be read; a record is replaced as a whole, through the collection
/// that holds it.
template <class Record>
class RecordAdapter : public Mox::GenericValue<Record> {
 public:
  using Mox::GenericValue<Record>::GenericValue;

  void attributeOp(Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                   std::unique_ptr<Mox::GenericIf>& result) override {
    this->checkModifiable(op);
    auto const* const field = FieldsById<Record>::find(op.attribute);
    if (field == nullptr) {
      Mox::GenericValue<Record>::attributeOp(op, arg, result);
      return;
    }
    if (op.code != Mox::AttributeOpCode::read || op.index != nullptr) refuseField(field->name, op);
    std::visit([&](auto member) { result = Mox::genericOf(this->val().fields().*member); },
               field->member);
  }

  std::unique_ptr<Mox::GenericIf> genericIfListConstructor(
      Mox::GenericIf const& list) const override {
    auto const& items = Mox::GenericIf::List_::of(list).items();
    typename Record::Fields fields;
    std::size_t taken = 0;
    forEachField<Record>([&](auto const& field) {
      if (taken == items.size()) return;
      takeField(fields.*field.member, items[taken++].get(), field.name);
    });
    if (taken < items.size()) {
      Mox::GenericIf::throwUnknownArgException(Mox::String8(shortName(Record::typeName)));
    }
    Record record(std::move(fields));
    if constexpr (requires { record.rangeCheck(); }) record.rangeCheck();
    return Mox::genericOf(record, false);
  }
};

/// Type object of a record.
template <class Record>
class RecordType : public Mox::ValueType<Record, typename Record::GenericIf_> {
 public:
  RecordType() noexcept : Mox::ValueType<Record, typename Record::GenericIf_>(Record::typeName) {}
};

}  // namespace Hardware::Kest::Slice::detail
