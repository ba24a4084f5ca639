#pragma once

#include <cstddef>
#include <map>

#include "platform/mox/Entity.h"

namespace Mox {

class Dir : public Entity {
 public:
  using Entity::Entity;
  ~Dir() override;

  MoxType const* fwkType() const override { return _fwkType(); }
  static MoxType const* _fwkType();

  void entityIs(Ptr<Entity> const& entity);
  Ptr<Entity> entityDel(Name const& name);
  Ptr<Entity> entity(Name const& name) const;
  std::size_t entities() const { return members_.size(); }

 private:
  std::map<String8, Ptr<Entity>> members_;
};

Ptr<Dir> root();
Ptr<Entity> entityAt(String8 const& path);
Ptr<Dir> dirAt(String8 const& path);

}  // namespace Mox
