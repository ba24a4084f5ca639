#pragma once

#include <list>

#include "platform/mox/Entity.h"
#include "platform/mox/Time.h"

namespace Mox {

class Clock : public Entity {
 public:
  class NotifieeConst;

  using Entity::Entity;

  MoxType const* fwkType() const override { return _fwkType(); }
  static MoxType const* _fwkType();

  double timeMin() const;
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
  double timeMin() const { return timeMin_; }
  void timeMinIs(double at) { timeMin_ = at; }

 private:
  friend class Clock;
  Clock const* clock() const { return static_cast<Clock const*>(rawNotifier()); }
  double dueAt() const { return moxMarkedForDeletion() ? never : timeMin_; }

  double timeMin_ = 0;
  bool mutable registered_ = false;
};

}  // namespace Mox
