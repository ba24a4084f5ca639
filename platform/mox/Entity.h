#pragma once

#include <cstdint>

#include "platform/mox/Name.h"
#include "platform/mox/Notifiee.h"
#include "platform/mox/Ptr.h"

namespace Mox {

class Dir;

/// A named object of the agent's state, in a directory or on its own.
///
/// It counts its changes (operations that altered its content) and its keyed lookups. Who observes
/// it, and how observers are told, is up to the derived entities.
class MOX_API Entity : public PtrInterface {
 public:
  class NotifieeConst;

  explicit Entity(Name name) noexcept;
  ~Entity() override;

  Name const& name() const noexcept { return name_; }
  /// The directory that holds the entity, or null.
  Dir* parent() const noexcept { return parent_; }
  /// The path from the root directory, as in `/slice/config`; for an entity that is not below the
  /// root, the path from its topmost directory without a leading slash.
  String8 fullName() const;

  /// Name of the attribute of that number; empty when the entity has none.
  virtual String8 attributeString(AttributeId id) const;
  static MoxType const* _fwkType();

  std::uint64_t changeCount() const noexcept { return changeCount_; }
  std::uint64_t lookupCount() const noexcept { return lookupCount_; }

 protected:
  void changeCountInc() noexcept { ++changeCount_; }
  void lookupCountInc() const noexcept { ++lookupCount_; }

 private:
  friend class Dir;

  Name name_;
  Dir* parent_ = nullptr;
  std::uint64_t changeCount_ = 0;
  mutable std::uint64_t lookupCount_ = 0;
};

/// Base of entity observers. The entities of this platform announce neither a change of parent nor
/// a new version; the two handlers keep their places for observers compiled against them.
class MOX_API Entity::NotifieeConst : public Mox::NotifieeConst {
 public:
  virtual void onParent();
  virtual void onVersion();
  ~NotifieeConst() override;
};

}  // namespace Mox
