#include "test/registry/RegistryText.h"

#include <array>
#include <stdexcept>

namespace Mox {

namespace {

std::string text(String8 const& string) {
  return std::string(string.view());
}

/// The name that stands at `index`; the index must be one of an enumerator.
template <std::size_t size>
std::string nameAt(std::array<char const*, size> const& names, std::size_t index) {
  return names.at(index);
}

std::string text(MoxType::Kind kind) {
  return nameAt(std::array{"value", "enumeration", "entity", "object", "untyped"},
                static_cast<std::size_t>(kind));
}

std::string text(IntrospectionClass introspectionClass) {
  return nameAt(std::array{"scalar", "enumerator", "collection", "handler"},
                static_cast<std::size_t>(introspectionClass));
}

std::string flagsText(AttributeFlags flags) {
  std::string all;
  constexpr std::array names{"visible", "persistent", "notifying", "writable"};
  for (std::size_t i = 0; i < names.size(); ++i) {
    if ((flags >> i & 1U) != 0) all.append(all.empty() ? "" : " ").append(names.at(i));
  }
  if (flags >> names.size() != 0) throw std::logic_error("a flag without a name");
  return " [" + all + "]";
}

std::string argumentsText(std::vector<Argument> const& arguments) {
  std::string all;
  for (Argument const& argument : arguments) {
    all += (all.empty() ? "" : ", ") + text(argument.name) + " " + text(argument.typeName);
  }
  return " (" + all + ")";
}

std::string attributeText(Attribute const& attribute) {
  std::string line = "  attribute " + std::to_string(attribute.id) + " " + text(attribute.name) +
                     " " + text(attribute.introspectionClass) + " " +
                     text(attribute.type->fullName());
  if (attribute.introspectionClass == IntrospectionClass::handler) {
    line += argumentsText(attribute.arguments);
  }
  if (attribute.keyType != nullptr) {
    line += " by " + text(attribute.keyName) + " " + text(attribute.keyType->fullName());
  }
  line += flagsText(attribute.flags);
  if (attribute.inheritedFrom != nullptr) {
    line += " inherited from " + text(attribute.inheritedFrom->fullName());
  }
  return line + "\n";
}

}  // namespace

std::string typeText(MoxType const& type) {
  std::string lines = "type " + text(type.fullName()) + " " + text(type.kind()) + "\n";
  for (Argument const& argument : type.typeNode()->constructorArguments()) {
    lines += "  argument " + text(argument.name) + " " + text(argument.typeName) + "\n";
  }
  for (Attribute const& attribute : type.typeNode()->attributes()) {
    lines += attributeText(attribute);
  }
  return lines;
}

std::string registryText(IntrospectionReactor const& reactor, std::string const& scope) {
  std::string lines;
  for (std::size_t end = scope.find("::"); true; end = scope.find("::", end + 2)) {
    String8 const above(scope.substr(0, end));
    if (reactor.hasNamespace(above)) lines += "namespace " + text(above) + "\n";
    if (end == std::string::npos) break;
  }
  for (MoxType const* type : reactor.types()) {
    if (type->fullName().view().starts_with(scope + "::")) lines += "\n" + typeText(*type);
  }
  return lines;
}

}  // namespace Mox
