#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "agent/access/ControlError.h"
#include "agent/access/JsonText.h"
#include "agent/rules/ChangeRules.h"
#include "agent/slice/Comparison.h"
#include "agent/verbs/ValueReply.h"
#include "agent/verbs/Verbs.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/IntrospectionReactor.h"
#include "registry/RecordTypes.h"
#include "registry/Refusals.h"

/// Changing and calling by name.
namespace Kest::Agent {

namespace {

using Mox::AttributeOpCode;
using Mox::String8;
using Wire::ErrorKind;
using Generic = std::unique_ptr<Mox::GenericIf>;

/// Carries out a change. If the attribute does not support it, the refusal names what was asked
/// for.
/// @param done as in "set"
Generic change(Target const& target, AttributeOpCode code, char const* done,
               Mox::GenericIf const* value = nullptr) {
  try {
    return target.operate(code, value);
  } catch (Mox::GenericAccessException const& refused) {
    if (refused.kind() != Mox::GenericAccessException::Kind::opNotSupported) throw;
    throw ControlError(ErrorKind::refused, target.shown() + " cannot be " + done);
  }
}

bool isEqual(Mox::GenericIf& a, Mox::GenericIf const& b) {
  Generic result;
  a.attributeOp({Mox::wholeAttributeId, AttributeOpCode::equality}, &b, result);
  return *Mox::genericVal<bool>(result.get());
}

/// Refuses a field of a record, which cannot be removed or announced by itself.
void checkIsWhole(Target const& target) {
  if (target.field == nullptr) return;
  throw ControlError(ErrorKind::refused, target.shown() + " is a field: name its record");
}

/// Refuses objects and whole collections, which can only be read, and handlers, which are called.
void checkChangeable(Target const& target) {
  if (target.attribute == nullptr || target.isWholeCollection()) {
    throw ControlError(ErrorKind::refused,
                       target.shown() + " is not changed as a whole: name one of its " +
                           (target.attribute == nullptr ? "attributes" : "entries"));
  }
  checkIsData(target);
  if (target.object->isConst()) Hardware::Kest::Slice::refuseConst();
}

/// Adds the entry's key to a record that does not name it.
Json withKey(Target const& target, Json value) {
  String8 const& keyName = target.attribute->keyName;
  Mox::TypeNode const* const record = target.attribute->type->typeNode();
  bool const isKeyed = target.key && target.field == nullptr && value.is_object() &&
                       record != nullptr && record->attribute(keyName) != nullptr;
  std::string const name(keyName.view());
  if (isKeyed && !value.contains(name)) value[name] = std::string(target.key->view());
  return value;
}

/// Whether fields that the request does not name get their defaults; otherwise they stay.
bool isReplacing(Request const& request) {
  Json const* const replace = request.find("replace");
  if (replace == nullptr) return false;
  if (replace->is_boolean()) return replace->get<bool>();
  throw ControlError(
      ErrorKind::request,
      std::string("expected true or false as 'replace', found ") + replace->type_name());
}

/// The value that a request gives for a target.
/// @param base the record that a JSON object changes; null: it makes a new one
Generic givenValue(Request const& request, Target const& target, Mox::GenericIf const* base) {
  Mox::MoxType const& type = target.type();
  Json const* const value = request.find("value");
  if ((value != nullptr) == (request.find("text") != nullptr)) {
    throw ControlError(ErrorKind::request, "expected one of the members 'value' and 'text'");
  }
  if (value != nullptr) return fromJson(type, withKey(target, *value), base);
  std::string const text = request.string("text");
  if (isTypedJson(type, text)) return fromJson(type, withKey(target, objectFromText(text)), base);
  return fromTyped(type, text);
}

/// The record at an entry with one field replaced.
Generic withField(Target const& target, Mox::GenericIf const& part) {
  Mox::MoxType const& type = *target.attribute->type;
  Generic const index = Mox::genericOf(*target.key);
  auto const entry = target.object->attributeIteratorKeyConst(target.attribute->id, index.get());
  Generic const record = entry->value();
  Mox::GenericIf::List_ parts;
  for (Mox::Argument const& argument : type.typeNode()->constructorArguments()) {
    if (argument.name == target.field->name) {
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

/// Stores a value. If this leaves a device down, its state is announced again, as when a slice is
/// applied.
void store(Target const& target, Mox::GenericIf const& value, Config& config) {
  std::optional<Config::Device> before;
  auto const* const device = Mox::genericVal<Config::Device>(&value);
  if (device != nullptr) {
    if (auto const entry = config.deviceIteratorConst(*target.key)) before = entry.value();
  }
  change(target, AttributeOpCode::store, "set", &value);
  if (device == nullptr || !isReregistered(before ? &*before : nullptr, *device)) return;
  if (config.deviceStateIteratorConst(*target.key)) config.deviceStateNotify(*target.key);
}

/// Whether there is a value: no absent entry, and no null reference.
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

Answer Verbs::set(Request const& request) {
  request.checkMembers({"path", "value", "text", "replace", "form"});
  Target const target = targetAt(agent_.roots(), request.string("path"));
  ValueForm const form(request);
  bool const isWhole = isReplacing(request) || target.field != nullptr;
  checkChangeable(target);
  Generic const before = target.read();
  Generic value = givenValue(request, target, isWhole ? nullptr : before.get());
  if (target.field != nullptr) value = withField(target, *value);
  if (target.key) checkStore(target, *value);
  checkIdle();

  store(target, *value, *agent_.config);
  Generic const now = target.read();
  bool const isChanged = before == nullptr || now == nullptr || !isEqual(*now, *before);
  return replyAbout(target, isChanged ? R"(,"changed":true)" : R"(,"changed":false)",
                    form.show(now.get()));
}

Answer Verbs::del(Request const& request) {
  request.checkMembers({"path", "form"});
  Target const target = targetAt(agent_.roots(), request.string("path"));
  ValueForm const form(request);
  checkChangeable(target);
  checkIsWhole(target);
  if (target.key) checkRemove(target, *agent_.config, *agent_.status);
  checkIdle();

  Generic const before = target.read();
  Generic const removed = change(target, AttributeOpCode::remove, "removed");
  bool const wasThere = isThere(before.get());
  return replyAbout(target, wasThere ? R"(,"removed":true)" : R"(,"removed":false)",
                    form.show(wasThere ? removed.get() : nullptr));
}

Answer Verbs::notify(Request const& request) {
  request.checkMembers({"path"});
  Target const target = targetAt(agent_.roots(), request.string("path"));
  checkChangeable(target);
  checkIsWhole(target);
  if (target.key) checkNotify(target, *agent_.config, *agent_.status);
  checkIdle();
  change(target, AttributeOpCode::notify, "announced");
  return Json{{"path", target.path}};
}

Answer Verbs::call(Request const& request) {
  request.checkMembers({"handler", "args"});
  std::string const name = request.string("handler");
  bool const isPath = name.find('/') != std::string::npos;
  Target const target = targetAt(agent_.roots(), isPath ? name : "sm/" + name);
  if (target.attribute == nullptr ||
      target.attribute->introspectionClass != Mox::IntrospectionClass::handler) {
    throw ControlError(ErrorKind::refused, target.shown() + " is no handler");
  }
  Mox::GenericIf::List_ const arguments = givenArguments(request, *target.attribute);
  if (!arguments.items().empty()) {
    if (auto const* const key = Mox::genericVal<String8>(arguments.items().front().get())) {
      checkCall(*target.attribute, *key, *agent_.config, *agent_.status);
    }
  }
  checkIdle();
  target.operate(AttributeOpCode::invoke, &arguments);
  return Json{{"handler", target.path}};
}

Answer Verbs::mode(Request const& request) {
  request.checkMembers({"mode"});
  Target const target = targetAt(agent_.roots(), "sm/mode");
  if (Json const* const mode = request.find("mode")) {
    Mox::MoxType const& type = target.type();
    bool const isTyped = mode->is_string() || mode->is_number_unsigned();
    Generic const value =
        isTyped ? fromTyped(type, mode->is_string() ? mode->get<std::string>() : mode->dump())
                : fromJson(type, *mode);
    target.operate(AttributeOpCode::store, value.get());
  }
  Generic const now = target.read();
  auto const& mode = *Mox::genericVal<Hardware::Kest::SmMode>(now.get());
  return Json{{"mode", toJson(*now)}, {"number", static_cast<int>(mode)}};
}

}  // namespace Kest::Agent
