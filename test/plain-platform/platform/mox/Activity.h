#pragma once

#include "platform/mox/Clock.h"

namespace Mox {

class ActivityConfig : public Entity {
 public:
  using Entity::Entity;
  MoxType const* fwkType() const override { return _fwkType(); }
  static MoxType const* _fwkType();
};

class ActivityManagerConfig : public PtrInterface {
 public:
  Ptr<Clock> const& clock() const { return clock_; }
  void clockIs(Ptr<Clock> clock) { clock_ = std::move(clock); }

 private:
  Ptr<Clock> clock_{new Clock("clock")};
};

Ptr<ActivityManagerConfig> activityManager();

}  // namespace Mox
