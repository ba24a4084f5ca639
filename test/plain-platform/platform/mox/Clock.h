#pragma once

#include <list>

#include "platform/mox/Entity.h"
#include "platform/mox/Time.h"

namespace Mox {

class Clock : public Entity {
 public:
  class NotifieeConst;

  static constexpr Seconds never = Mox::never;

  using Entity::Entity;

  MoxType const* fwkType() const override { return _fwkType(); }
  static MoxType const* _fwkType();

  Seconds timeMin() const;
  void dispatch();

 private:
  std::list<NotifieeConst const*> mutable observers_;  // in order of registration
};

class Clock::NotifieeConst : public Mox::Entity::NotifieeConst {
 public:
  void isRegisteredNotifieeIs(bool registered) const override;
  String8 name() const override { return clock() == nullptr ? "" : clock()->fullName(); }
  void notifierIs(Ptr<PtrInterface const> const& notifier) override;
  virtual void onTime() {}
  ~NotifieeConst() override { NotifieeConst::isRegisteredNotifieeIs(false); }

  Ptr<Clock const> notifier() const { return lentNotifier<Clock>(); }
  bool isRegisteredNotifiee() const { return registered_; }
  Seconds timeMin() const { return timeMin_; }
  void timeMinIs(Seconds at) { timeMin_ = at; }

 private:
  friend class Clock;
  Clock const* clock() const { return static_cast<Clock const*>(rawNotifier()); }
  Seconds dueAt() const { return moxMarkedForDeletion() ? never : timeMin_; }

  Seconds timeMin_ = 0;
  bool mutable registered_ = false;
};

}  // namespace Mox
