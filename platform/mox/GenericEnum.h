#pragma once

#include <utility>
#include <vector>

#include "platform/mox/GenericValue.h"
#include "platform/mox/TypeNode.h"

namespace Mox {

/// What every enumeration has: the attribute `value`, its number.
MOX_API MoxType const* enumerationType();
/// Above any enumerator's value.
inline constexpr AttributeId enumerationValueAttributeId = 256;

/// Adapter of an enumeration whose enumerators are registered. Reading an enumerator's attribute
/// yields that enumerator.
template <class Enum>
class GenericEnum : public GenericValue<Enum> {
 public:
  using GenericValue<Enum>::GenericValue;

  void attributeOp(AttributeOp const& op, GenericIf const* arg,
                   std::unique_ptr<GenericIf>& result) override {
    bool const read = op.code == AttributeOpCode::read;
    TypeNode const* const node = this->type()->typeNode();
    Attribute const* const attribute = node == nullptr ? nullptr : node->attribute(op.attribute);
    if (!read || attribute == nullptr) {
      GenericValue<Enum>::attributeOp(op, arg, result);
      return;
    }
    if (op.index != nullptr) GenericIf::throwBadIndexAttrException(attribute->name);
    if (op.attribute == enumerationValueAttributeId) {
      result = genericOf(static_cast<std::uint32_t>(this->val()));
    } else {
      result = genericOf(static_cast<Enum>(op.attribute));
    }
  }
};

/// Type object of an enumeration. `Adapter` is `GenericEnum<Enum>` or derived from it.
template <class Enum, class Adapter = GenericEnum<Enum>>
class EnumType : public ValueType<Enum, Adapter> {
 public:
  EnumType(String8 fullName, std::vector<String8> enumerators) noexcept
      : ValueType<Enum, Adapter>(std::move(fullName), MoxType::Kind::enumeration),
        enumerators_(std::move(enumerators)) {}

  std::vector<String8> enumerators() const override { return enumerators_; }

 private:
  std::vector<String8> enumerators_;
};

}  // namespace Mox
