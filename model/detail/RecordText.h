#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "model/detail/FieldTable.h"
#include "platform/mox/Strep.h"

/// The uniform text form of records, written and read by their field tables.
namespace Hardware::Kest::Slice::detail {

/// The type's name without its namespaces and enclosing types.
constexpr std::string_view shortName(std::string_view typeName) {
  return typeName.substr(typeName.rfind(':') + 1);
}

template <class T>
void appendStrep(std::string& text, T const& value) {
  using Mox::valueToStrep;
  text.append(valueToStrep(value).view());
}

inline void appendStrep(std::string& text, std::uint32_t value) {
  text.append(std::to_string(value));
}

template <class T>
void appendStrep(std::string& text, Mox::Ptr<T> const& value) {
  text.append(Mox::valueToStrepOfRawPtr(value.ptr(), T::_fwkType()).view());
}

/// The text before each field's value, such as `, 'destId': `, in field order.
template <class Record>
std::vector<std::string> leads() {
  std::vector<std::string> all;
  std::string before = std::string("Value('").append(Record::typeName).append("', ** {'");
  forEachField<Record>([&](auto const& field) {
    all.push_back(before.append(field.name).append("': "));
    before = ", '";
  });
  return all;
}

template <class Record>
Mox::String8 recordToStrep(Record const& record) {
  static std::vector<std::string> const allLeads = leads<Record>();
  std::string text;
  text.reserve(512);  // more than a record takes with names of a usual length
  auto lead = allLeads.begin();
  forEachField<Record>([&](auto const& field) {
    text.append(*lead++);
    appendStrep(text, record.fields().*field.member);
  });
  return Mox::String8(text.append("})"));
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

/// Reads a record's text form. Fields may come in any order, the last of several of the same name
/// counts, and one that the text does not name keeps the value it has in `fields`.
template <class Record>
void readRecord(typename Record::Fields& fields, Mox::String8::IteratorConst& it,
                Mox::String8::IteratorConst const& end) {
  static std::string const quotedTypeName = std::string(" '").append(Record::typeName) + "'";
  static std::string const name(shortName(Record::typeName));
  for (char const* token : {" Value", " (", quotedTypeName.c_str(), " ,", " **", " {"}) {
    Mox::needString(it, end, token);
  }
  for (bool first = true;; first = false) {
    Mox::needString(it, end, " ");
    if (it == end) Mox::throwRangeException(Mox::String8("premature end of value type " + name));
    if (*it == '}') break;
    if (!first) Mox::needString(it, end, ", ");
    Mox::String8::IteratorConst const nameAt = it;
    Mox::String8 const fieldName =
        Mox::sequenceToValue(it, end, static_cast<Mox::String8*>(nullptr));
    Mox::needString(it, end, " : ");
    if (!readField<Record>(fields, fieldName, it, end)) {
      it = nameAt;
      std::string text = name + " has no such attribute: ";
      Mox::throwRangeException(Mox::String8(text.append(fieldName.view())));
    }
  }
  Mox::needString(it, end, "} ");
  Mox::needString(it, end, ") ");
}

}  // namespace Hardware::Kest::Slice::detail
