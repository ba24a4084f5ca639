#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "agent/access/ControlError.h"
#include "agent/access/JsonText.h"
#include "agent/access/Text.h"
#include "agent/rules/ChangeRules.h"
#include "agent/slice/Changes.h"
#include "agent/verbs/PiecewiseResult.h"
#include "agent/verbs/Verbs.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/IntrospectionReactor.h"
#include "registry/RecordTypes.h"

/// Reading, changing and calling by name.
namespace Kest::Agent {

namespace {

using Mox::AttributeOpCode;
using Mox::IntrospectionClass;
using Mox::String8;
using Wire::ErrorKind;
using Generic = std::unique_ptr<Mox::GenericIf>;

/// How a reply shows values: as JSON, or as text forms.
class Form {
 public:
  explicit Form(Request const& request)
      : asText_(request.oneOf("form", {"json", "text"}) == "text") {}

  /// Null for no value.
  Json show(Mox::GenericIf const* value) const {
    if (value == nullptr) return nullptr;
    return asText_ ? Json(std::string(value->strRep().view())) : toJson(*value);
  }

 private:
  bool asText_;
};

/// A collection, as an object of its entries.
void addEntries(PiecewiseResult& result, Mox::GenericIf const& object, Mox::AttributeId collection,
                Form const& form) {
  std::shared_ptr<Mox::AttributeIterator> const it = object.attributeIteratorConst(collection);
  result.add("{");
  result.add(whileAny([it, form](Items& items) {
    if (!*it) return false;
    items.add(Mox::genericVal<String8>(it->key().get())->view(), form.show(it->value().get()));
    ++*it;
    return true;
  }));
  result.add("}");
}

/// Every attribute but the handlers. Nothing but entries is left to be read later.
void addAttributes(PiecewiseResult& result, Mox::GenericIf& object, Form const& form) {
  std::string before = "{";
  for (Mox::Attribute const& attribute : object.type()->typeNode()->attributes()) {
    bool const isCollection = attribute.introspectionClass == IntrospectionClass::collection;
    if (!isCollection && attribute.introspectionClass != IntrospectionClass::scalar) continue;
    result.add(before + jsonText(attribute.name.view()) + ":");
    before = ",";
    if (isCollection) {
      addEntries(result, object, attribute.id, form);
    } else {
      Generic value;
      object.attributeOp({attribute.id, AttributeOpCode::read}, nullptr, value);
      result.add(jsonText(form.show(value.get())));
    }
  }
  result.add(before == "{" ? "{}" : "}");
}

Mox::MoxType const& typeAt(Place const& place) {
  if (place.field != nullptr) return *place.field->type;
  return place.attribute == nullptr ? *place.object->type() : *place.attribute->type;
}

void checkIsData(Place const& place) {
  if (place.attribute->introspectionClass != IntrospectionClass::handler) return;
  throw ControlError(ErrorKind::refused, place.shown() + " is a handler: call it");
}

/// Carries a change out. What an attribute does not support is told by what was asked for.
/// @param done as in "set"
Generic change(Place const& place, AttributeOpCode code, char const* done,
               Mox::GenericIf const* value = nullptr) {
  try {
    return place.operate(code, value);
  } catch (Mox::GenericAccessException const& refused) {
    if (refused.kind() != Mox::GenericAccessException::Kind::opNotSupported) throw;
    throw ControlError(ErrorKind::refused, place.shown() + " cannot be " + done);
  }
}

Json header(Place const& place) {
  return {{"path", place.path}, {"type", std::string(typeAt(place).fullName().view())}};
}

bool isEqual(Mox::GenericIf& a, Mox::GenericIf const& b) {
  Generic result;
  a.attributeOp({Mox::wholeAttributeId, AttributeOpCode::equality}, &b, result);
  return *Mox::genericVal<bool>(result.get());
}

/// Refuses what goes with its record.
void checkIsWhole(Place const& place) {
  if (place.field == nullptr) return;
  throw ControlError(ErrorKind::refused, place.shown() + " is a field: name its record");
}

/// Refuses what can only be read as a whole, and what is called instead.
void checkChangeable(Place const& place) {
  if (place.attribute == nullptr || place.isWholeCollection()) {
    throw ControlError(ErrorKind::refused,
                       place.shown() + " is not changed as a whole: name one of its " +
                           (place.attribute == nullptr ? "attributes" : "entries"));
  }
  checkIsData(place);
  if (place.object->isConst()) place.operate(AttributeOpCode::store);  // which refuses
}

/// The key of a record that is stored at an entry goes without saying.
Json withKey(Place const& place, Json value) {
  String8 const& keyName = place.attribute->keyName;
  Mox::TypeNode const* const record = place.attribute->type->typeNode();
  bool const isKeyed = place.key && place.field == nullptr && value.is_object() &&
                       record != nullptr && record->attribute(keyName) != nullptr;
  std::string const name(keyName.view());
  if (isKeyed && !value.contains(name)) value[name] = std::string(place.key->view());
  return value;
}

/// Whether fields that a request does not name get their defaults, or stay as they are.
bool isReplacing(Request const& request) {
  Json const* const replace = request.find("replace");
  if (replace == nullptr) return false;
  if (replace->is_boolean()) return replace->get<bool>();
  throw ControlError(
      ErrorKind::request,
      std::string("expected true or false as 'replace', found ") + replace->type_name());
}

/// The value that a request gives for a place.
/// @param base the record that a JSON object changes; null: it makes a new one
Generic givenValue(Request const& request, Place const& place, Mox::GenericIf const* base) {
  Mox::MoxType const& type = typeAt(place);
  Json const* const value = request.find("value");
  if ((value != nullptr) == (request.find("text") != nullptr)) {
    throw ControlError(ErrorKind::request, "expected one of the members 'value' and 'text'");
  }
  if (value != nullptr) return fromJson(type, withKey(place, *value), base);
  std::string const text = request.string("text");
  if (isTypedJson(type, text)) return fromJson(type, withKey(place, objectFromText(text)), base);
  return fromTyped(type, text);
}

/// The record at an entry with one field replaced.
Generic withField(Place const& place, Mox::GenericIf const& part) {
  Mox::MoxType const& type = *place.attribute->type;
  Generic const index = Mox::genericOf(*place.key);
  auto const entry = place.object->attributeIteratorKeyConst(place.attribute->id, index.get());
  Generic const record = entry->value();
  Mox::GenericIf::List_ parts;
  for (Mox::Argument const& argument : type.typeNode()->constructorArguments()) {
    if (argument.name == place.field->name) {
      parts.add(part.clone());
    } else {
      Generic kept;
      Mox::Attribute const& field = *type.typeNode()->attribute(argument.name);
      record->attributeOp({field.id, AttributeOpCode::read}, nullptr, kept);
      parts.add(std::move(kept));
    }
  }
  return type.genericIfNew(parts);
}

/// Stores a value. As when a slice is applied, the state of a device that this leaves down is
/// announced again.
void store(Place const& place, Mox::GenericIf const& value, Config& config) {
  std::optional<Config::Device> before;
  auto const* const device = Mox::genericVal<Config::Device>(&value);
  if (device != nullptr) {
    if (auto const entry = config.deviceIteratorConst(*place.key)) before = entry.value();
  }
  change(place, AttributeOpCode::store, "set", &value);
  if (device == nullptr || !isReregistered(before ? &*before : nullptr, *device)) return;
  if (config.deviceStateIteratorConst(*place.key)) config.deviceStateNotify(*place.key);
}

/// Neither an entry that is absent nor a reference to nothing.
bool isThere(Mox::GenericIf const* value) {
  auto const* const reference = dynamic_cast<Mox::GenericIfPtrInterface const*>(value);
  return value != nullptr && (reference == nullptr || reference->object());
}

/// The arguments that a request gives for a handler.
Mox::GenericIf::List_ givenArguments(Request const& request, Mox::Attribute const& handler) {
  Mox::GenericIf::List_ arguments;
  Json const* const given = request.find("args");
  if (given == nullptr) return arguments;
  if (!given->is_array()) {
    throw ControlError(ErrorKind::request,
                       std::string("expected a list as 'args', found ") + given->type_name());
  }
  if (given->size() > handler.arguments.size()) {
    Mox::GenericIf::throwUnknownArgException(handler.name);
  }
  for (Json const& value : *given) {
    Mox::Argument const& declared = handler.arguments[arguments.items().size()];
    Mox::MoxType const& type = *Mox::IntrospectionReactor::global().type(declared.typeName);
    arguments.add(value.is_string() ? fromTyped(type, value.get<std::string>())
                                    : fromJson(type, value));
  }
  return arguments;
}

}  // namespace

Answer Verbs::get(Request const& request) {
  request.checkMembers({"path", "form"});
  Place const place = placeAt(served_.roots(), request.string("path"));
  Form const form(request);
  if (place.attribute != nullptr) checkIsData(place);
  if (place.attribute == nullptr || place.isWholeCollection()) {
    auto result = std::make_unique<PiecewiseResult>();
    std::string opening = jsonText(header(place));
    opening.back() = ',';
    result->add(opening + R"("value":)");
    if (place.attribute == nullptr) {
      addAttributes(*result, *place.object, form);
    } else {
      addEntries(*result, *place.object, place.attribute->id, form);
    }
    result->add("}");
    return result;
  }
  Generic const value = place.read();
  if (value == nullptr) {
    throw ControlError(ErrorKind::path, "there is no " + place.shown());
  }
  Json result = header(place);
  result["value"] = form.show(value.get());
  return result;
}

Json Verbs::set(Request const& request) {
  request.checkMembers({"path", "value", "text", "replace", "form"});
  Place const place = placeAt(served_.roots(), request.string("path"));
  Form const form(request);
  bool const isWhole = isReplacing(request) || place.field != nullptr;
  checkChangeable(place);
  Generic const before = place.read();
  Generic value = givenValue(request, place, isWhole ? nullptr : before.get());
  if (place.field != nullptr) value = withField(place, *value);
  if (place.key) checkStore(place, *value);
  checkIdle();

  store(place, *value, *served_.config);
  Generic const now = place.read();
  Json result = header(place);
  result["changed"] = before == nullptr || now == nullptr || !isEqual(*now, *before);
  result["value"] = form.show(now.get());
  return result;
}

Json Verbs::del(Request const& request) {
  request.checkMembers({"path", "form"});
  Place const place = placeAt(served_.roots(), request.string("path"));
  Form const form(request);
  checkChangeable(place);
  checkIsWhole(place);
  if (place.key) checkRemove(place, *served_.config, *served_.status);
  checkIdle();

  Generic const before = place.read();
  Generic const removed = change(place, AttributeOpCode::remove, "removed");
  Json result = header(place);
  result["removed"] = isThere(before.get());
  result["value"] = isThere(before.get()) ? form.show(removed.get()) : nullptr;
  return result;
}

Json Verbs::notify(Request const& request) {
  request.checkMembers({"path"});
  Place const place = placeAt(served_.roots(), request.string("path"));
  checkChangeable(place);
  checkIsWhole(place);
  if (place.key) checkNotify(place, *served_.config, *served_.status);
  checkIdle();
  change(place, AttributeOpCode::notify, "announced");
  return {{"path", place.path}};
}

Json Verbs::call(Request const& request) {
  request.checkMembers({"handler", "args"});
  std::string const name = request.string("handler");
  bool const isPath = name.find('/') != std::string::npos;
  Place const place = placeAt(served_.roots(), isPath ? name : "sm/" + name);
  if (place.attribute == nullptr ||
      place.attribute->introspectionClass != IntrospectionClass::handler) {
    throw ControlError(ErrorKind::refused, place.shown() + " is no handler");
  }
  Mox::GenericIf::List_ const arguments = givenArguments(request, *place.attribute);
  if (!arguments.items().empty()) {
    if (auto const* const key = Mox::genericVal<String8>(arguments.items().front().get())) {
      checkCall(*place.attribute, *key, *served_.config, *served_.status);
    }
  }
  checkIdle();
  place.operate(AttributeOpCode::invoke, &arguments);
  return {{"handler", place.path}};
}

Json Verbs::mode(Request const& request) {
  request.checkMembers({"mode"});
  Place const place = placeAt(served_.roots(), "sm/mode");
  if (Json const* const mode = request.find("mode")) {
    Mox::MoxType const& type = typeAt(place);
    bool const isTyped = mode->is_string() || mode->is_number_unsigned();
    Generic const value =
        isTyped ? fromTyped(type, mode->is_string() ? mode->get<std::string>() : mode->dump())
                : fromJson(type, *mode);
    place.operate(AttributeOpCode::store, value.get());
  }
  Generic const now = place.read();
  auto const& mode = *Mox::genericVal<Hardware::Kest::SmMode>(now.get());
  return {{"mode", toJson(*now)}, {"number", static_cast<int>(mode)}};
}

}  // namespace Kest::Agent
