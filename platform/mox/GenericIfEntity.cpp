#include "platform/mox/GenericIfEntity.h"

#include "platform/detail/EntityAttributes.h"
#include "platform/mox/Dir.h"
#include "platform/mox/GenericValue.h"

namespace Mox {

namespace {

std::unique_ptr<GenericIf> generic(std::uint64_t count) {
  return genericOf(static_cast<unsigned long long>(count));
}

constexpr EntityAttribute attributes[] = {
    {"name", 1, [] { return TypeOf<Name>::type(); },
     [](Entity const& entity) { return genericOf(entity.name()); }},
    {"fullName", 2, [] { return TypeOf<String8>::type(); },
     [](Entity const& entity) { return genericOf(entity.fullName()); }},
    {"parent", 3, [] { return TypeOf<Dir>::type(); },
     [](Entity const& entity) { return genericOf(Ptr<Dir const>(entity.parent())); }},
    {"changeCount", 4, [] { return TypeOf<unsigned long long>::type(); },
     [](Entity const& entity) { return generic(entity.changeCount()); }},
    {"lookupCount", 6, [] { return TypeOf<unsigned long long>::type(); },
     [](Entity const& entity) { return generic(entity.lookupCount()); }},
};

}  // namespace

std::span<EntityAttribute const> entityAttributes() {
  return attributes;
}

GenericIfEntity::~GenericIfEntity() = default;

void GenericIfEntity::attributeOp(AttributeOp const& op, GenericIf const* arg,
                                  std::unique_ptr<GenericIf>& result) {
  for (EntityAttribute const& attribute : attributes) {
    if (attribute.id != op.attribute || op.code != AttributeOpCode::read) continue;
    if (op.index != nullptr) throwBadIndexAttrException(attribute.name);
    result = attribute.read(objectAs<Entity>());
    return;
  }
  GenericIfPtrInterface::attributeOp(op, arg, result);
}

EntityType::~EntityType() = default;

std::unique_ptr<GenericIf> EntityType::genericIf(String8 const& text, bool isConst) const {
  String8::IteratorConst it = text.begin();
  Ptr<Entity> const entity = detail::readReference(it, text.end(), this);
  if (!(it == text.end())) detail::throwJunk(it, text);
  return genericIf_(entity.ptr(), isConst);
}

std::unique_ptr<GenericIf> EntityType::genericIf_(PtrInterface* object, bool isConst) const {
  return std::make_unique<GenericIfEntity>(this, object, isConst);
}

}  // namespace Mox
