#pragma once

#include <map>

#include "platform/mox/Entity.h"

namespace Mox {

/// A directory: an entity that holds others by name.
class MOX_API Dir : public Entity {
 public:
  explicit Dir(Name name) noexcept;
  ~Dir() override;

  MoxType const* fwkType() const override;
  static MoxType const* _fwkType();

  /// Adds `entity` under its name and becomes its parent. `RangeException` when the name is empty,
  /// holds a slash or is taken, when the entity has a parent already, or when this directory is in
  /// it.
  void entityIs(Ptr<Entity> const& entity);
  /// Returns the entity that was removed, or null.
  Ptr<Entity> entityDel(Name const& name);
  /// The member of that name, or null.
  Ptr<Entity> entity(Name const& name) const;
  std::size_t entities() const noexcept { return members_.size(); }

 private:
  std::map<String8, Ptr<Entity>> members_;
};

/// The root of the agent's entities. Its name is empty, its path `/`.
MOX_API Ptr<Dir> root();

/// The entity at an absolute path such as `/pci/0000:05:00.0`, or null when it leads nowhere, as
/// one with an empty step (`/pci/`) does.
MOX_API Ptr<Entity> entityAt(String8 const& path);

/// The directory at an absolute path, the empty one being the root's too; directories that are
/// missing on the way are made. `RangeException` when the path is not absolute, has an empty step
/// or leads through an entity that is no directory; nothing is made then.
MOX_API Ptr<Dir> dirAt(String8 const& path);

}  // namespace Mox
