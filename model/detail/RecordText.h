#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "model/detail/FieldLead.h"
#include "model/detail/FieldTable.h"
#include "platform/mox/Strep.h"
#include "platform/mox/StrepBuffer.h"

/// The uniform text form of records, written and read by their field tables.
namespace Hardware::Kest::Slice::detail {

/// The type's name without its namespaces and enclosing types.
constexpr std::string_view shortName(std::string_view typeName) {
  return typeName.substr(typeName.rfind(':') + 1);
}

template <class T>
void appendField(Mox::StrepBuffer& text, Mox::Ptr<T> const& value) {
  text.append(Mox::valueToStrepOfRawPtr(value.ptr(), T::_fwkType()).view());
}

template <class T>
void appendField(Mox::StrepBuffer& text, T const& value) {
  using Mox::appendStrep;
  if constexpr (std::is_same_v<T, std::uint32_t>) {
    appendStrep(text, static_cast<unsigned long long>(value));
  } else if constexpr (requires { appendStrep(text, value); }) {
    appendStrep(text, value);
  } else {
    text.append(valueToStrep(value).view());
  }
}

template <class Record>
Mox::String8 recordToStrep(typename Record::Fields const& fields) {
  Mox::StrepBuffer text;
  auto const append = [&](auto lead) {
    text.append(lead.text);
    appendField(text, fields.*lead.field.member);
  };
  [&]<std::size_t... index>(std::index_sequence<index...>) {
    (append(FieldLead<Record, index>()), ...);
  }
  (FieldIndexes<Record>());
  text.append("})");
  return text.string();
}

/// Reads fields from the start of a record as long as they stand there just as they are printed;
/// false if there is none. It stops behind a value, from where any other field can be read. A
/// switch port that is read as it was printed takes 0.25 of the instructions that it takes name by
/// name.
template <class Record>
bool readPrintedFields(typename Record::Fields& fields, Mox::String8::IteratorConst& it,
                       Mox::String8::IteratorConst const& end) {
  auto const read = [&](auto lead) {
    if (!it.viewTo(end).starts_with(lead.text)) return false;
    it += lead.text.size();
    Mox::deserializeAttr(it, end, &(fields.*lead.field.member), lead.field.name);
    return true;
  };
  return [&]<std::size_t first, std::size_t... others>(std::index_sequence<first, others...>) {
    if (!read(FieldLead<Record, first>())) return false;
    static_cast<void>((read(FieldLead<Record, others>()) && ...));
    return true;
  }
  (FieldIndexes<Record>());
}

/// Reads the value of the field called `name`; false when the record has no such field.
template <class Record>
bool readField(typename Record::Fields& fields, Mox::String8 const& name,
               Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end) {
  bool known = false;
  forEachField<Record>([&](auto const& field) {
    if (known || !(name == field.name)) return;
    known = true;
    Mox::deserializeAttr(it, end, &(fields.*field.member), field.name);
  });
  return known;
}

/// Reads what is in front of a record's fields.
template <class Record>
void readHead(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end) {
  static std::string const quotedTypeName = " '" + std::string(Record::typeName) + "'";
  for (char const* token : {" Value", " (", quotedTypeName.c_str(), " ,", " **", " {"}) {
    Mox::needString(it, end, token);
  }
}

/// Reads a record's text form. Fields may come in any order, the last of several of the same name
/// counts, and one that the text does not name keeps the value it has in `fields`.
template <class Record>
void readRecord(typename Record::Fields& fields, Mox::String8::IteratorConst& it,
                Mox::String8::IteratorConst const& end) {
  constexpr std::string_view name = shortName(Record::typeName);
  bool first = !readPrintedFields<Record>(fields, it, end);
  if (first) readHead<Record>(it, end);
  for (;; first = false) {
    Mox::needString(it, end, " ");
    if (it == end) {
      std::string text = "premature end of value type ";
      Mox::throwRangeException(Mox::String8(text.append(name)));
    }
    if (*it == '}') break;
    if (!first) Mox::needString(it, end, ", ");
    Mox::String8::IteratorConst const nameAt = it;
    Mox::String8 const fieldName =
        Mox::sequenceToValue(it, end, static_cast<Mox::String8*>(nullptr));
    Mox::needString(it, end, " : ");
    if (!readField<Record>(fields, fieldName, it, end)) {
      it = nameAt;
      std::string text(name);
      text.append(" has no such attribute: ").append(fieldName.view());
      Mox::throwRangeException(Mox::String8(text));
    }
  }
  Mox::needString(it, end, "} ");
  Mox::needString(it, end, ") ");
}

}  // namespace Hardware::Kest::Slice::detail
