#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <utility>

#include "agent/access/ControlError.h"
#include "agent/access/ValueText.h"
#include "agent/verbs/PiecewiseResult.h"
#include "agent/verbs/Verbs.h"
#include "platform/mox/IntrospectionReactor.h"
#include "text/NearMatch.h"

/// What the type registry holds.
namespace Kest::Agent {

namespace {

using Mox::MoxType;

std::string spelled(Mox::String8 const& name) {
  return std::string(name.view());
}

char const* kindName(MoxType::Kind kind) {
  switch (kind) {
    case MoxType::Kind::value:
      return "value";
    case MoxType::Kind::enumeration:
      return "enumeration";
    case MoxType::Kind::entity:
      return "entity";
    case MoxType::Kind::object:
      return "object";
    case MoxType::Kind::untyped:
      break;
  }
  return "untyped";
}

char const* className(Mox::IntrospectionClass introspectionClass) {
  switch (introspectionClass) {
    case Mox::IntrospectionClass::scalar:
      return "scalar";
    case Mox::IntrospectionClass::enumerator:
      return "enumerator";
    case Mox::IntrospectionClass::collection:
      return "collection";
    case Mox::IntrospectionClass::handler:
      break;
  }
  return "handler";
}

Json flagNames(Mox::AttributeFlags flags) {
  constexpr std::pair<Mox::AttributeFlag, char const*> names[] = {
      {Mox::attributeVisible, "visible"},
      {Mox::attributePersistent, "persistent"},
      {Mox::attributeNotifying, "notifying"},
      {Mox::attributeWritable, "writable"}};
  Json set = Json::array();
  for (auto const& [flag, name] : names) {
    if ((flags & flag) != 0) set.push_back(name);
  }
  return set;
}

Json argumentsJson(std::vector<Mox::Argument> const& arguments) {
  Json list = Json::array();
  for (Mox::Argument const& argument : arguments) {
    list.push_back({{"name", spelled(argument.name)}, {"type", spelled(argument.typeName)}});
  }
  return list;
}

Json attributeJson(Mox::Attribute const& attribute) {
  Json json{{"name", spelled(attribute.name)},
            {"id", attribute.id},
            {"type", spelled(attribute.type->fullName())},
            {"class", className(attribute.introspectionClass)},
            {"flags", flagNames(attribute.flags)}};
  if (attribute.keyType != nullptr) {
    json["key"] = {{"name", spelled(attribute.keyName)},
                   {"type", spelled(attribute.keyType->fullName())}};
  }
  if (attribute.introspectionClass == Mox::IntrospectionClass::handler) {
    json["arguments"] = argumentsJson(attribute.arguments);
  }
  return json;
}

std::vector<MoxType const*> const& registered() {
  return Mox::IntrospectionReactor::global().types();
}

/// The type of that full name, or the only one whose full name ends with `::` and that name.
MoxType const& typeNamed(std::string const& name) {
  std::vector<MoxType const*> found;
  std::vector<std::string> names;
  for (MoxType const* type : registered()) {
    if (type->fullName() == std::string_view(name)) return *type;
    if (type->fullName().view().ends_with("::" + name)) found.push_back(type);
    names.push_back(spelled(type->fullName()));
    names.push_back(spelled(type->typeNode()->name()));
  }
  if (found.size() == 1) return *found.front();
  std::string message = "there is no type '" + nameText(Mox::String8(name)) + "'";
  if (!found.empty()) {
    message = "'" + nameText(Mox::String8(name)) + "' may be";
    for (MoxType const* type : found) message += " " + spelled(type->fullName());
  }
  throw ControlError(Wire::ErrorKind::path, message,
                     found.empty() ? Text::nearMatch(name, names).value_or(std::string()) : "");
}

std::vector<std::string> typeNames(std::string const& beginning) {
  std::vector<std::string> names;
  for (MoxType const* type : registered()) names.push_back(spelled(type->fullName()));
  std::erase_if(names, [&](std::string const& name) { return !name.starts_with(beginning); });
  return names;
}

std::vector<std::string> handlerNames(std::vector<Root> const& roots,
                                      std::string const& beginning) {
  std::vector<std::string> names;
  for (Root const& root : roots) {
    for (Mox::Attribute const& attribute : root.adapter()->type()->typeNode()->attributes()) {
      bool const isHandler = attribute.introspectionClass == Mox::IntrospectionClass::handler;
      if (isHandler && attribute.name.view().starts_with(beginning)) {
        names.push_back(spelled(attribute.name));
      }
    }
  }
  return names;
}

}  // namespace

Answer Verbs::types(Request const& request) {
  request.checkMembers({});
  Json list = Json::array();
  for (MoxType const* type : registered()) {
    list.push_back({{"name", spelled(type->fullName())}, {"kind", kindName(type->kind())}});
  }
  return list;
}

Answer Verbs::describe(Request const& request) {
  request.checkMembers({"type"});
  MoxType const& type = typeNamed(request.string("type"));
  Json attributes = Json::array();
  for (Mox::Attribute const& attribute : type.typeNode()->attributes()) {
    attributes.push_back(attributeJson(attribute));
  }
  return Json{{"name", spelled(type.fullName())},
              {"kind", kindName(type.kind())},
              {"constructor", argumentsJson(type.typeNode()->constructorArguments())},
              {"attributes", attributes}};
}

Answer Verbs::complete(Request const& request) {
  request.checkMembers({"path", "type", "handler"});
  if (auto const type = request.optionalString("type")) return typeNames(*type);
  if (auto const handler = request.optionalString("handler")) {
    return handlerNames(agent_.roots(), *handler);
  }
  std::string const path = request.string("path");
  Continuations all = continuations(agent_.roots(), path);
  auto result = std::make_unique<PiecewiseResult>();
  result->add("[");
  result->addItems(std::move(all.names), [&list = *result, path, before = std::move(all.before)](
                                             Mox::String8 const& name) {
    std::string const whole = before + std::string(name.view());
    if (whole.starts_with(path)) list.item(whole);
  });
  result->add("]");
  return result;
}

}  // namespace Kest::Agent
