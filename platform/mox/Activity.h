#pragma once

#include "platform/mox/Clock.h"

namespace Mox {

/// One activity (thread) of the agent that an object may be bound to; a null reference stands for
/// the default one.
class MOX_API ActivityConfig : public Entity {
 public:
  using Entity::Entity;
  ~ActivityConfig() override;

  MoxType const* fwkType() const override;
  static MoxType const* _fwkType();
};

/// The agent's activity manager, as far as reactors ask for it: it knows the clock.
class MOX_API ActivityManagerConfig : public PtrInterface {
 public:
  ActivityManagerConfig();
  ~ActivityManagerConfig() override;

  /// The default activity's clock; made with the manager.
  Ptr<Clock> const& clock() const noexcept { return clock_; }
  void clockIs(Ptr<Clock> clock) noexcept { clock_ = std::move(clock); }

 private:
  Ptr<Clock> clock_;
};

/// The one activity manager of the process; made at the first call.
MOX_API Ptr<ActivityManagerConfig> activityManager();

}  // namespace Mox
