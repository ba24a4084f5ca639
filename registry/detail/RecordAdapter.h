#pragma once

#include <cstddef>
#include <memory>
#include <utility>

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

/// Adapter of a record. Fields can be read; a record is replaced as a whole, through the collection
/// that holds it.
template <class Record>
class RecordAdapter : public Mox::GenericValue<Record> {
 public:
  using Mox::GenericValue<Record>::GenericValue;

  void attributeOp(Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                   std::unique_ptr<Mox::GenericIf>& result) override {
    this->checkModifiable(op);
    bool known = false;
    forEachFieldAttribute<Record>([&](auto const& field, Mox::AttributeId id) {
      if (id != op.attribute) return;
      known = true;
      readField(field, op, result);
    });
    if (!known) Mox::GenericValue<Record>::attributeOp(op, arg, result);
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

 private:
  /// Every other operation is refused, and so is an index.
  void readField(auto const& field, Mox::AttributeOp const& op,
                 std::unique_ptr<Mox::GenericIf>& result) const {
    if (op.code != Mox::AttributeOpCode::read) {
      Mox::GenericIf::throwOpNotSupportedException(field.name, op.code);
    }
    if (op.index != nullptr) Mox::GenericIf::throwBadIndexAttrException(field.name);
    result = Mox::genericOf(this->val().fields().*field.member);
  }
};

/// Type object of a record.
template <class Record>
class RecordType : public Mox::ValueType<Record, typename Record::GenericIf_> {
 public:
  RecordType() noexcept : Mox::ValueType<Record, typename Record::GenericIf_>(Record::typeName) {}
};

}  // namespace Hardware::Kest::Slice::detail
