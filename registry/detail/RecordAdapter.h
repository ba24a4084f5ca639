#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "model/detail/FieldTable.h"
#include "model/detail/RecordText.h"
#include "registry/detail/Held.h"
#include "registry/detail/ValueAdapter.h"

/// Generic access to records, by their field tables.
namespace Hardware::Kest::Slice::detail {

/// Calls `visit(field, attributeId)` for each field of the record, in order.
template <class Record, class Visit>
void forEachFieldAttribute(Visit visit) {
  Mox::AttributeId id = firstFieldAttributeId;
  forEachField<Record>([&](auto const& field) { visit(field, id++); });
}

/// Adapter of a record. Fields can be read; a record is replaced as a whole, through the collection
/// that holds it.
template <class Record>
class RecordAdapter : public ValueAdapter<Record> {
 public:
  using ValueAdapter<Record>::ValueAdapter;

  void attributeOp(Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                   std::unique_ptr<Mox::GenericIf>& result) override {
    checkOperation(*this, op, arg);
    bool known = false;
    forEachFieldAttribute<Record>([&](auto const& field, Mox::AttributeId id) {
      if (id != op.attribute) return;
      known = true;
      if (op.code != Mox::AttributeOpCode::read) {
        Mox::GenericIf::throwOpNotSupportedException(field.name, op.code);
      }
      if (op.index != nullptr) Mox::GenericIf::throwBadIndexAttrException(field.name);
      result = Mox::genericOf(this->val().fields().*field.member);
    });
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): the adapter in between would check once more
    if (!known) Mox::GenericValue<Record>::attributeOp(op, arg, result);
  }

  std::unique_ptr<Mox::GenericIf> genericIfListConstructor(
      Mox::GenericIf const& list) const override {
    auto const& items = listOf(list).items();
    typename Record::Fields fields;
    std::size_t taken = 0;
    forEachField<Record>([&](auto const& field) {
      if (taken == items.size()) return;
      auto& value = fields.*field.member;
      value = held<std::remove_reference_t<decltype(value)>>(items[taken++].get(), field.name);
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
