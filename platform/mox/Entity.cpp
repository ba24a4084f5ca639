#include "platform/mox/Entity.h"

#include <string>
#include <utility>

#include "platform/mox/Dir.h"
#include "platform/mox/GenericIfEntity.h"
#include "platform/mox/TypeNode.h"

namespace Mox {

Entity::Entity(Name name) noexcept : name_(std::move(name)) {}

Entity::~Entity() = default;

String8 Entity::fullName() const {
  if (this == root().ptr()) return "/";
  std::string path(name_.string().view());
  for (Entity const* above = parent_; above != nullptr; above = above->parent_) {
    path.insert(0, "/").insert(0, above->name_.string().view());
  }
  return String8(path);
}

String8 Entity::attributeString(AttributeId id) const {
  TypeNode const* const node = _fwkType()->typeNode();
  Attribute const* const attribute = node == nullptr ? nullptr : node->attribute(id);
  return attribute == nullptr ? String8() : attribute->name;
}

MoxType const* Entity::_fwkType() {
  static EntityType const type("Mox::Entity");
  return &type;
}

void Entity::NotifieeConst::onParent() {}

void Entity::NotifieeConst::onVersion() {}

Entity::NotifieeConst::~NotifieeConst() = default;

}  // namespace Mox
