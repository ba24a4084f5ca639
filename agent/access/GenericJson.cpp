#include "agent/access/GenericJson.h"

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "agent/access/ValueText.h"
#include "platform/mox/Entity.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/TypeNode.h"
#include "text/Words.h"

namespace Kest::Agent {

namespace {

using Generic = std::unique_ptr<Mox::GenericIf>;
using Mox::GenericIf;
using Mox::MoxType;
using Mox::String8;
using Kind = MoxType::Kind;

bool isReference(MoxType const& type) {
  return type.kind() == Kind::entity || type.kind() == Kind::object;
}

/// A record is a value that is made from named parts.
bool isRecord(MoxType const& type) {
  return type.kind() == Kind::value && type.typeNode() != nullptr &&
         !type.typeNode()->constructorArguments().empty();
}

bool isNumber(MoxType const& type) {
  return &type == Mox::TypeOf<std::uint16_t>::type() ||
         &type == Mox::TypeOf<std::uint32_t>::type() ||
         &type == Mox::TypeOf<unsigned long long>::type();
}

/// The text form of a value. If that is a string in apostrophes, as for enumerators and MAC
/// addresses, the string itself.
std::string bareText(GenericIf const& value) {
  String8 const text = value.strRep();
  if (!text.view().starts_with('\'')) return std::string(text.view());
  return std::string(Mox::strepToValue<String8>(text).view());
}

Generic readAttribute(GenericIf& of, Mox::AttributeId id) {
  Generic value;
  of.attributeOp({id, Mox::AttributeOpCode::read}, nullptr, value);
  return value;
}

/// Makes JSON values of what it is told.
class Tree {
 public:
  Tree() : whole_(nullptr) {}

  template <class Value>
  void value(Value const& value) {
    place() = value;
  }
  void begin(Json empty) { open_.push_back(&(place() = std::move(empty))); }
  void name(std::string_view name) { name_ = name; }
  void end() { open_.pop_back(); }

  Json whole() { return std::move(whole_); }

 private:
  Json& place() {
    if (open_.empty()) return whole_;
    Json& parent = *open_.back();
    return parent.is_array() ? parent.emplace_back() : parent[name_];
  }

  Json whole_;
  std::vector<Json*> open_;  // arrays and objects that are not complete yet
  std::string name_;         // of the next member
};

/// Appends JSON text of what it is told.
class JsonPrinter {
 public:
  explicit JsonPrinter(std::string& text) : text_(text) {}

  void value(std::nullptr_t /*null*/) { next() += "null"; }
  void value(bool flag) { next() += flag ? "true" : "false"; }
  template <std::unsigned_integral Number>
  void value(Number number) {
    next() += std::to_string(number);
  }
  void value(double number) { next() += jsonText(number); }
  void value(std::string_view string) { appendJsonString(next(), string); }
  void begin(Json const& empty) {
    next() += empty.is_array() ? '[' : '{';
    close_.push_back(empty.is_array() ? ']' : '}');
    isFirst_ = true;
  }
  void name(std::string_view name) {
    appendJsonString(next(), name);
    text_ += ':';
    isFirst_ = true;  // no comma before the value
  }
  void end() {
    text_ += close_.back();
    close_.pop_back();
    isFirst_ = false;
  }

 private:
  std::string& next() {
    if (!std::exchange(isFirst_, false)) text_ += ',';
    return text_;
  }

  std::string& text_;
  std::string close_;
  bool isFirst_ = true;
};

template <class Out>
void tell(GenericIf const& value, Out& out);

template <class T, class Out>
bool tellBasic(GenericIf const& value, Out& out) {
  T const* const basic = Mox::genericVal<T>(&value);
  if (basic != nullptr) out.value(*basic);
  return basic != nullptr;
}

template <class Out>
void tellRecord(GenericIf const& record, Out& out) {
  Generic const copy = record.clone();
  out.begin(Json::object());
  for (Mox::Attribute const& field : record.type()->typeNode()->attributes()) {
    out.name(field.name.view());
    tell(*readAttribute(*copy, field.id), out);
  }
  out.end();
}

template <class Out>
void tellReference(GenericIf const& reference, Out& out) {
  auto const& object = static_cast<Mox::GenericIfPtrInterface const&>(reference).object();
  if (!object) return out.value(nullptr);
  auto const* const entity = dynamic_cast<Mox::Entity const*>(object.ptr());
  entity == nullptr ? out.value(bareText(reference)) : out.value(entity->fullName().view());
}

template <class Out>
void tellList(GenericIf::List_ const& list, Out& out) {
  out.begin(Json::array());
  for (auto const& item : list.items()) tell(*item, out);
  out.end();
}

/// Tells what JSON a value is.
template <class Out>
void tell(GenericIf const& value, Out& out) {
  MoxType const& type = *value.type();
  if (isReference(type)) return tellReference(value, out);
  if (isRecord(type)) return tellRecord(value, out);
  if (&type == GenericIf::List_::_fwkType()) {
    return tellList(static_cast<GenericIf::List_ const&>(value), out);
  }
  if (auto const* const string = Mox::genericVal<String8>(&value)) {
    return out.value(string->view());
  }
  bool const isBasic = tellBasic<std::uint16_t>(value, out) ||
                       tellBasic<std::uint32_t>(value, out) ||
                       tellBasic<unsigned long long>(value, out) || tellBasic<double>(value, out) ||
                       tellBasic<bool>(value, out);
  if (!isBasic) out.value(bareText(value));
}

[[noreturn]] void refuse(std::string const& expected, Json const& found) {
  constexpr std::size_t longest = 60;
  std::string text = jsonText(found);
  if (text.size() > longest) text = text.substr(0, longest) + "...";
  throw Mox::RangeException(String8("expected " + expected + ", found " + text));
}

String8 quoted(std::string const& chars) {
  return Mox::valueToStrep(String8(chars));
}

/// The text form of a reference to what is at `path`.
String8 referenceText(MoxType const& type, String8 const& path) {
  return Mox::format("EntityPtr(%s, %s)", Mox::valueToStrep(path).charPtr(),
                     Mox::valueToStrep(type.fullName()).charPtr());
}

void checkMembers(MoxType const& type, Json const& object) {
  for (auto const& [name, value] : object.items()) {
    if (type.typeNode()->attribute(String8(name)) != nullptr) continue;
    throw Mox::RangeException(Mox::format("%s has no such attribute: %s",
                                          type.typeNode()->name().charPtr(),
                                          nameText(String8(name)).c_str()));
  }
}

/// Makes the record from its parts in order. Parts that `object` does not name come from the base.
Generic recordFrom(MoxType const& type, Json const& object, GenericIf const* base) {
  if (!object.is_object()) refuse("an object of the fields", object);
  checkMembers(type, object);
  Generic const others = base == nullptr ? type.genericIfNew(GenericIf::List_()) : base->clone();
  GenericIf::List_ parts;
  for (Mox::Argument const& part : type.typeNode()->constructorArguments()) {
    Mox::Attribute const& field = *type.typeNode()->attribute(part.name);
    auto const given = object.find(std::string(part.name.view()));
    try {
      parts.add(given == object.end() ? readAttribute(*others, field.id)
                                      : fromJson(*field.type, *given));
    } catch (Mox::RangeException const& refused) {
      Mox::rethrowFromDeserializeAttr(refused, part.name.charPtr());
    }
  }
  return type.genericIfNew(parts);
}

/// The full name of the enumerator that a person typed in short, or by its number.
std::string enumeratorNamed(MoxType const& type, std::string const& typed) {
  std::string const typeName(type.typeNode() == nullptr ? "" : type.typeNode()->name().charPtr());
  bool const isAllDigits =
      !typed.empty() && typed.find_first_not_of("0123456789") == std::string::npos;
  std::size_t number = 0;
  for (String8 const& enumerator : type.enumerators()) {
    bool const isMeant = isAllDigits ? std::to_string(number) == typed
                                     : shortEnumerator(typeName, enumerator.view()) == typed;
    if (isMeant) return std::string(enumerator.view());
    ++number;
  }
  return typed;
}

/// Refuses unknown names here, because not every enumeration says what it expects.
Generic enumeratorFrom(MoxType const& type, std::string const& name) {
  std::vector<String8> const all = type.enumerators();
  if (std::find(all.begin(), all.end(), String8(name)) != all.end()) {
    return type.genericIf(quoted(name), true);
  }
  std::vector<std::string> expected;
  expected.reserve(all.size());
  for (String8 const& one : all) expected.emplace_back(quoted(std::string(one.view())).view());
  throw Mox::RangeException(
      Mox::format("expected %s, found %s", Text::listed(expected).c_str(), quoted(name).charPtr()));
}

}  // namespace

Json toJson(GenericIf const& value) {
  Tree tree;
  tell(value, tree);
  return tree.whole();
}

void appendJson(std::string& text, GenericIf const& value) {
  JsonPrinter told(text);
  tell(value, told);
}

Generic fromJson(MoxType const& type, Json const& json, GenericIf const* base) {
  if (isRecord(type)) return recordFrom(type, json, base);
  if (&type == Mox::TypeOf<bool>::type()) {
    if (!json.is_boolean()) refuse("true or false", json);
    return Mox::genericOf(json.get<bool>());
  }
  if (isNumber(type)) {
    if (!json.is_number_unsigned()) refuse("a whole number from 0", json);
    return type.genericIf(String8(json.dump()), true);
  }
  if (&type == Mox::TypeOf<double>::type()) {
    if (!json.is_number()) refuse("a number", json);
    return Mox::genericOf(json.get<double>());
  }
  if (isReference(type)) {
    if (json.is_null()) return type.genericIf_(nullptr, true);
    if (!json.is_string()) refuse("a path or null", json);
    return type.genericIf(referenceText(type, String8(json.get<std::string>())), true);
  }
  if (!json.is_string()) refuse("a string", json);
  if (type.kind() == Kind::enumeration) return enumeratorFrom(type, json.get<std::string>());
  return type.genericIf(quoted(json.get<std::string>()), true);
}

bool isTypedJson(MoxType const& type, std::string_view text) {
  return isRecord(type) && text.starts_with('{');
}

Generic fromTyped(MoxType const& type, std::string_view text) {
  if (isTypedJson(type, text)) return fromJson(type, objectFromText(text));
  std::string const typed(text);
  bool const isReferenceForm = text.starts_with("EntityPtr") || text == "None";
  bool const isTextForm = text.starts_with('\'') || (isReference(type) && isReferenceForm);
  bool const isFlag = &type == Mox::TypeOf<bool>::type();
  if (isFlag && (text == "true" || text == "false")) return Mox::genericOf(text == "true");
  bool const isPlain =
      isRecord(type) || isNumber(type) || isFlag || &type == Mox::TypeOf<double>::type();
  if (type.kind() == Kind::enumeration) {
    return enumeratorFrom(type, isTextForm
                                    ? std::string(Mox::strepToValue<String8>(String8(text)).view())
                                    : enumeratorNamed(type, typed));
  }
  if (isTextForm || isPlain) return type.genericIf(String8(text), true);
  if (isReference(type)) return type.genericIf(referenceText(type, String8(text)), true);
  return type.genericIf(quoted(typed), true);
}

}  // namespace Kest::Agent
