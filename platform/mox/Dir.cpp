#include "platform/mox/Dir.h"

#include <optional>
#include <string_view>
#include <vector>

#include "platform/mox/GenericIfEntity.h"
#include "platform/mox/RangeException.h"

namespace Mox {

namespace {

/// The steps of an absolute path, none for the root's "/"; nothing when it is not absolute or a
/// step is empty.
std::optional<std::vector<Name>> steps(std::string_view path) {
  if (path == "/") return std::vector<Name>();
  std::vector<Name> all;
  while (path.starts_with('/')) {
    path.remove_prefix(1);
    std::string_view const step = path.substr(0, path.find('/'));
    if (step.empty()) return std::nullopt;
    all.emplace_back(String8(step));
    path.remove_prefix(step.size());
  }
  if (all.empty()) return std::nullopt;
  return all;
}

}  // namespace

Dir::Dir(Name name) noexcept : Entity(std::move(name)) {}

Dir::~Dir() {
  for (auto const& [name, member] : members_) member->parent_ = nullptr;
}

MoxType const* Dir::_fwkType() {
  static EntityType const type("Mox::Dir");
  return &type;
}

MoxType const* Dir::fwkType() const {
  return _fwkType();
}

void Dir::entityIs(Ptr<Entity> const& entity) {
  String8 const& name = entity->name().string();
  if (name.empty() || name.pos("/") != String8::npos) {
    throwRangeException(format("'%s' is no name for a directory's member", name.charPtr()));
  }
  if (entity->parent_ != nullptr) {
    throwRangeException(format("'%s' is in a directory already", entity->fullName().charPtr()));
  }
  for (Entity const* above = this; above != nullptr; above = above->parent_) {
    if (above == entity.ptr()) {
      throwRangeException(format("'%s' would be in itself", fullName().charPtr()));
    }
  }
  auto const [there, isNew] = members_.try_emplace(name, entity);
  if (!isNew) {
    throwRangeException(format("'%s' exists already", there->second->fullName().charPtr()));
  }
  entity->parent_ = this;
}

Ptr<Entity> Dir::entityDel(Name const& name) {
  Ptr<Entity> gone = entity(name);
  if (gone) gone->parent_ = nullptr;
  members_.erase(name.string());
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

Ptr<Entity> entityAt(String8 const& path) {
  auto const names = steps(path.view());
  if (!names) return nullptr;
  Ptr<Entity> at = root();
  for (Name const& name : *names) {
    Ptr<Dir> const dir = ptrCast<Dir>(at);
    if (!dir) return nullptr;
    at = dir->entity(name);
  }
  return at;
}

Ptr<Dir> dirAt(String8 const& path) {
  auto const names = steps(path.empty() ? "/" : path.view());
  if (!names) throwRangeException(format("'%s' is no absolute path", path.charPtr()));
  Ptr<Dir> at = root();
  for (Name const& name : *names) {
    Ptr<Entity> next = at->entity(name);
    if (!next) {
      next = Ptr<Dir>(new Dir(name));
      at->entityIs(next);
    }
    at = ptrCast<Dir>(next);
    if (!at) throwRangeException(format("'%s' is no directory", next->fullName().charPtr()));
  }
  return at;
}

}  // namespace Mox
