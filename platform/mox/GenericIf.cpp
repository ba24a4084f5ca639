#include "platform/mox/GenericIf.h"

#include <string>

#include "platform/mox/RangeException.h"
#include "platform/mox/TypeNode.h"

namespace Mox {

namespace {

using Kind = GenericAccessException::Kind;

Attribute const* registered(MoxType const* type, AttributeId id) {
  TypeNode const* const node = type->typeNode();
  return node == nullptr ? nullptr : node->attribute(id);
}

/// Refuses what no adapter of the type answered.
[[noreturn]] void refuse(MoxType const* type, AttributeId id, AttributeOpCode code) {
  Attribute const* const attribute = registered(type, id);
  if (attribute != nullptr) GenericIf::throwOpNotSupportedException(attribute->name, code);
  if (id == wholeAttributeId) GenericIf::throwOpNotSupportedException(type->fullName(), code);
  GenericIf::throwNoSuchAttributeException(type, format("%u", id));
}

}  // namespace

GenericAccessException::~GenericAccessException() = default;

AttributeIterator::~AttributeIterator() = default;

void const* GenericIf::voidPtr() const {
  return nullptr;
}

AttributeId GenericIf::attributeId(String8 const& name) const {
  TypeNode const* const node = type_->typeNode();
  Attribute const* const attribute = node == nullptr ? nullptr : node->attribute(name);
  if (attribute == nullptr) throwNoSuchAttributeException(type_, name);
  return attribute->id;
}

void GenericIf::attributeOp(AttributeOp const& op, GenericIf const*,
                            std::unique_ptr<GenericIf>& result) {
  if (op.attribute != wholeAttributeId || op.code != AttributeOpCode::read) {
    refuse(type_, op.attribute, op.code);
  }
  result = clone();
}

std::unique_ptr<GenericIf> GenericIf::genericIfListConstructor(GenericIf const&) const {
  throwOpNotSupportedException(type_->fullName(), AttributeOpCode::construct);
}

std::unique_ptr<AttributeIterator> GenericIf::attributeIteratorConst(AttributeId attribute) const {
  refuse(type_, attribute, AttributeOpCode::read);
}

std::unique_ptr<AttributeIterator> GenericIf::attributeIteratorKeyConst(AttributeId attribute,
                                                                        GenericIf const*) const {
  refuse(type_, attribute, AttributeOpCode::read);
}

std::unique_ptr<GenericIf> GenericIf::attributeIterator_iterObj(
    AttributeIterator const& iterator) const {
  return iterator ? iterator.value() : nullptr;
}

void GenericIf::throwConstException(String8 const& text) {
  throw GenericAccessException(Kind::constInstance, text);
}

void GenericIf::throwBadIndexAttrException(String8 const& name) {
  throw GenericAccessException(Kind::badIndex,
                               format("'%s' does not take that index", name.charPtr()));
}

void GenericIf::throwOpNotSupportedException(String8 const& name, AttributeOpCode code) {
  throw GenericAccessException(
      Kind::opNotSupported,
      format("'%s' does not support operation %u", name.charPtr(), static_cast<unsigned>(code)));
}

void GenericIf::throwTypeException(String8 const& name) {
  throw GenericAccessException(Kind::type,
                               format("'%s' is missing or of the wrong type", name.charPtr()));
}

void GenericIf::throwUnknownArgException(String8 const& name) {
  throw GenericAccessException(Kind::unknownArg,
                               format("'%s' does not take so many arguments", name.charPtr()));
}

void GenericIf::throwNoSuchAttributeException(MoxType const* type, String8 const& name) {
  throw GenericAccessException(
      Kind::noSuchAttribute,
      format("'%s' has no attribute '%s'", type->fullName().charPtr(), name.charPtr()));
}

void GenericIf::throwNotBoundException(String8 const& name) {
  throw GenericAccessException(Kind::notBound, format("no '%s' is bound", name.charPtr()));
}

GenericIf::List_::List_() noexcept : GenericIf(_fwkType(), true) {}

GenericIf::List_::List_(List_ const& other) : GenericIf(other) {
  items_.reserve(other.items_.size());
  for (auto const& item : other.items_) items_.push_back(item->clone());
}

GenericIf::List_::~List_() = default;

void GenericIf::List_::add(std::unique_ptr<GenericIf> item) {
  if (!item) throwTypeException("item");
  items_.push_back(std::move(item));
}

MoxType const* GenericIf::List_::_fwkType() {
  static MoxType const type("List", MoxType::Kind::value);
  return &type;
}

std::unique_ptr<GenericIf> GenericIf::List_::clone() const {
  return std::make_unique<List_>(*this);
}

String8 GenericIf::List_::strRep() const {
  std::string text = "[";
  char const* separator = "";
  for (auto const& item : items_) {
    text.append(separator).append(item->strRep().view());
    separator = ", ";
  }
  return String8(text.append("]"));
}

}  // namespace Mox
