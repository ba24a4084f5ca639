#include "platform/mox/Dir.h"

#include <sstream>
#include <string>
#include <vector>

#include "platform/mox/GenericIfEntity.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/TypeNode.h"

namespace Mox {

MoxType const* Entity::_fwkType() {
  static EntityType const type("Mox::Entity");
  return &type;
}

MoxType const* Dir::_fwkType() {
  static EntityType const type("Mox::Dir");
  return &type;
}

String8 Entity::fullName() const {
  if (this == root().ptr()) return "/";
  std::string const own(name_.string().view());
  if (parent_ == nullptr) return String8(own);
  std::string const above = parent_ == root().ptr() ? "" : parent_->fullName().charPtr();
  return String8(above + "/" + own);
}

String8 Entity::attributeString(AttributeId id) const {
  Attribute const* const attribute = _fwkType()->typeNode()->attribute(id);
  return attribute == nullptr ? String8() : attribute->name;
}

Dir::~Dir() {
  for (auto const& [name, member] : members_) member->parent_ = nullptr;
}

void Dir::entityIs(Ptr<Entity> const& entity) {
  String8 const name = entity->name().string();
  bool const isIn = entity->parent_ != nullptr || entity.ptr() == this;
  if (name.empty() || name.pos("/") != String8::npos || isIn || members_.count(name) > 0) {
    throwRangeException(format("'%s' cannot be put here", name.charPtr()));
  }
  members_[name] = entity;
  entity->parent_ = this;
}

Ptr<Entity> Dir::entityDel(Name const& name) {
  Ptr<Entity> const gone = entity(name);
  members_.erase(name.string());
  if (gone) gone->parent_ = nullptr;
  return gone;
}

Ptr<Entity> Dir::entity(Name const& name) const {
  auto const found = members_.find(name.string());
  return found == members_.end() ? nullptr : found->second;
}

Ptr<Dir> root() {
  static Ptr<Dir> const top(new Dir(Name()));
  return top;
}

namespace {

/// Splits a path at its slashes. The first step of an absolute path is empty.
std::vector<Name> stepsOf(std::string const& path) {
  std::vector<Name> all;
  std::istringstream steps(path);
  for (std::string step; std::getline(steps, step, '/');) all.emplace_back(step.c_str());
  if (path.ends_with('/')) all.emplace_back();
  return all;
}

}  // namespace

Ptr<Entity> entityAt(String8 const& path) {
  if (path == "/") return root();
  if (!path.view().starts_with('/')) return nullptr;
  std::vector<Name> const steps = stepsOf(std::string(path.view()));
  Ptr<Entity> at = root();
  for (std::size_t i = 1; i < steps.size() && at; ++i) {
    Ptr<Dir> const dir = ptrCast<Dir>(at);
    at = dir ? dir->entity(steps[i]) : nullptr;
  }
  return at;
}

Ptr<Dir> dirAt(String8 const& path) {
  std::vector<Name> const steps = stepsOf(std::string(path.view()));
  Ptr<Dir> at = root();
  for (std::size_t i = 1; i < steps.size(); ++i) {
    if (!at->entity(steps[i])) at->entityIs(Ptr<Dir>(new Dir(steps[i])));
    at = ptrCast<Dir>(at->entity(steps[i]));
    if (!at) throwRangeException(format("'%s' is no directory", steps[i].string().charPtr()));
  }
  return at;
}

}  // namespace Mox
