#pragma once

#include <cstdint>

#include "platform/mox/Name.h"
#include "platform/mox/Notifiee.h"
#include "platform/mox/Ptr.h"

namespace Mox {

class Dir;

class Entity : public PtrInterface {
 public:
  class NotifieeConst;

  explicit Entity(Name name) noexcept : name_(std::move(name)) {}

  Name const& name() const { return name_; }
  Dir* parent() const { return parent_; }
  String8 fullName() const;
  virtual String8 attributeString(AttributeId id) const;
  static MoxType const* _fwkType();

  std::uint64_t changeCount() const { return changeCount_; }
  std::uint64_t lookupCount() const { return lookupCount_; }

 protected:
  void changeCountInc() { ++changeCount_; }
  void lookupCountInc() const { ++lookupCount_; }

 private:
  friend class Dir;

  Name name_;
  Dir* parent_ = nullptr;
  std::uint64_t changeCount_ = 0;
  std::uint64_t mutable lookupCount_ = 0;
};

class Entity::NotifieeConst : public Mox::NotifieeConst {
 public:
  virtual void onParent() {}
  virtual void onVersion() {}
};

}  // namespace Mox
