#include "platform/mox/IntrospectionReactor.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/mox/GenericEnum.h"
#include "platform/mox/RangeException.h"

namespace Mox {

namespace {

constexpr std::string_view scopeMark = "::";

/// What stands after the last scope mark.
std::string_view lastName(std::string_view fullName) {
  std::size_t const mark = fullName.rfind(scopeMark);
  return mark == std::string_view::npos ? fullName : fullName.substr(mark + scopeMark.size());
}

std::string_view scopeName(std::string_view fullName) {
  std::size_t const mark = fullName.rfind(scopeMark);
  return fullName.substr(0, mark == std::string_view::npos ? 0 : mark);
}

[[noreturn]] void refuseUnregistered(MoxType const& type) {
  throwRangeException(format("'%s' is not registered", type.fullName().charPtr()));
}

/// What is registered of a type, wherever it is.
TypeNode const& registered(MoxType const& type) {
  if (type.typeNode() == nullptr) refuseUnregistered(type);
  return *type.typeNode();
}

}  // namespace

IntrospectionReactor& IntrospectionReactor::global() {
  // Never destroyed: it is there for whichever library goes last.
  static IntrospectionReactor& reactor = *new IntrospectionReactor;
  return reactor;
}

IntrospectionReactor::IntrospectionReactor() = default;

IntrospectionReactor::~IntrospectionReactor() {
  for (MoxType const* type : types_) type->typeNodeIs(nullptr);
}

void IntrospectionReactor::checkScope(String8 const& fullName) const {
  if (lastName(fullName.view()).empty()) {
    throwRangeException(format("'%s' has no name after its scope", fullName.charPtr()));
  }
  String8 const scope(scopeName(fullName.view()));
  if (!scope.empty() && !hasNamespace(scope) && type(scope) == nullptr) {
    throwRangeException(format("'%s' has no scope to be in", fullName.charPtr()));
  }
}

TypeNode& IntrospectionReactor::nodeOf(MoxType const& type) {
  auto const found = nodes_.find(&type);
  if (found == nodes_.end()) refuseUnregistered(type);
  return found->second;
}

void IntrospectionReactor::onNamespace(String8 const& fullName) {
  checkScope(fullName);
  namespaces_.insert(fullName);
}

void IntrospectionReactor::onType(MoxType const& type) {
  String8 const& fullName = type.fullName();
  checkScope(fullName);
  bool const isTaken = hasNamespace(fullName) || this->type(fullName) != nullptr;
  if (isTaken || type.typeNode() != nullptr) {
    throwRangeException(format("'%s' is registered already", fullName.charPtr()));
  }
  types_.reserve(types_.size() + 1);  // so that nothing is left half done
  type.typeNodeIs(&nodes_.try_emplace(&type, String8(lastName(fullName.view()))).first->second);
  types_.push_back(&type);
}

void IntrospectionReactor::onConstructorArgument(MoxType const& type, Argument argument) {
  nodeOf(type).constructor_.push_back(std::move(argument));
}

void IntrospectionReactor::onAttribute(MoxType const& type, Attribute attribute) {
  TypeNode& node = nodeOf(type);
  if (node.attribute(attribute.name) != nullptr || node.attribute(attribute.id) != nullptr) {
    throwRangeException(format("'%s' has an attribute '%s' or %u already",
                               type.fullName().charPtr(), attribute.name.charPtr(), attribute.id));
  }
  node.attributes_.push_back(std::move(attribute));
}

void IntrospectionReactor::onInheritedAttributes(MoxType const& type, MoxType const& base) {
  for (Attribute attribute : registered(base).attributes()) {
    if (attribute.inheritedFrom == nullptr) attribute.inheritedFrom = &base;
    onAttribute(type, std::move(attribute));
  }
}

void IntrospectionReactor::onEnumerators(MoxType const& type) {
  AttributeId value = 0;
  for (String8 const& name : type.enumerators()) {
    onAttribute(type, {name, value++, &type, IntrospectionClass::enumerator, attributeVisible});
  }
  onInheritedAttributes(type, *enumerationType());
}

void IntrospectionReactor::onRecordCollection(MoxType const& type, Attribute attribute,
                                              String8 const& keyName) {
  Attribute const* const key = registered(*attribute.type).attribute(keyName);
  if (key == nullptr) {
    throwRangeException(format("'%s' has no attribute '%s' to be a key",
                               attribute.type->fullName().charPtr(), keyName.charPtr()));
  }
  std::erase_if(nodeOf(type).attributes_, [&](Attribute const& one) {
    return one.inheritedFrom != nullptr && one.name == attribute.name;
  });
  attribute.introspectionClass = IntrospectionClass::collection;
  attribute.keyName = key->name;
  attribute.keyType = key->type;
  onAttribute(type, std::move(attribute));
}

void IntrospectionReactor::typeDel(MoxType const& type) noexcept {
  if (nodes_.erase(&type) == 0) return;
  type.typeNodeIs(nullptr);
  std::erase(types_, &type);
}

MoxType const* IntrospectionReactor::type(String8 const& fullName) const noexcept {
  auto const found = std::find_if(types_.begin(), types_.end(), [&](MoxType const* type) {
    return type->fullName() == fullName;
  });
  return found == types_.end() ? nullptr : *found;
}

}  // namespace Mox
