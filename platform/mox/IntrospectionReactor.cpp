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

IntrospectionReactor::IntrospectionReactor() : root_(nullptr, String8()) {
  root_.isNamespace_ = true;
}

IntrospectionReactor::~IntrospectionReactor() {
  for (MoxType const* type : types_) type->typeNodeIs(nullptr);
}

TypeNode* IntrospectionReactor::find(String8 const& fullName) noexcept {
  TypeNode* at = &root_;
  for (std::string_view rest = fullName.view(); at != nullptr && !rest.empty();) {
    std::string_view const step = rest.substr(0, rest.find(scopeMark));
    rest.remove_prefix(std::min(rest.size(), step.size() + scopeMark.size()));
    auto const& members = at->members();
    auto const found = std::find_if(members.begin(), members.end(),
                                    [&](auto const& member) { return member->name() == step; });
    at = found == members.end() ? nullptr : found->get();
  }
  return at;
}

TypeNode& IntrospectionReactor::scopeOf(String8 const& fullName) {
  if (lastName(fullName.view()).empty()) {
    throwRangeException(format("'%s' has no name behind its scope", fullName.charPtr()));
  }
  TypeNode* const scope = find(String8(scopeName(fullName.view())));
  if (scope == nullptr) {
    throwRangeException(format("'%s' has no scope to be in", fullName.charPtr()));
  }
  return *scope;
}

TypeNode& IntrospectionReactor::nodeOf(MoxType const& type) {
  TypeNode* const node = find(type.fullName());
  if (node == nullptr || node->type() != &type) refuseUnregistered(type);
  return *node;
}

TypeNode const& IntrospectionReactor::onNamespace(String8 const& fullName) {
  TypeNode& scope = scopeOf(fullName);
  String8 const name(lastName(fullName.view()));
  TypeNode* node = scope.member(name);
  if (node == nullptr) {
    node = scope.members_.emplace_back(std::make_unique<TypeNode>(&scope, name)).get();
  }
  node->isNamespace_ = node->type_ == nullptr;
  return *node;
}

void IntrospectionReactor::onType(MoxType const& type) {
  TypeNode& scope = scopeOf(type.fullName());
  String8 const name(lastName(type.fullName().view()));
  if (scope.member(name) != nullptr || type.typeNode() != nullptr) {
    throwRangeException(format("'%s' is registered already", type.fullName().charPtr()));
  }
  auto node = std::make_unique<TypeNode>(&scope, name);
  node->type_ = &type;
  types_.reserve(types_.size() + 1);  // so that nothing is left half done
  type.typeNodeIs(scope.members_.emplace_back(std::move(node)).get());
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
  TypeNode* node = find(type.fullName());
  if (node == nullptr || node->type() != &type) return;
  std::erase(types_, &type);
  type.typeNodeIs(nullptr);
  node->type_ = nullptr;
  while (!node->isNamespace_ && node->type_ == nullptr && node->members_.empty()) {
    TypeNode* const scope = node->parent_;
    std::erase_if(scope->members_, [&](auto const& member) { return member.get() == node; });
    node = scope;
  }
}

MoxType const* IntrospectionReactor::type(String8 const& fullName) const noexcept {
  auto const found = std::find_if(types_.begin(), types_.end(), [&](MoxType const* type) {
    return type->fullName() == fullName;
  });
  return found == types_.end() ? nullptr : *found;
}

}  // namespace Mox
