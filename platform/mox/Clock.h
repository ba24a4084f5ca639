#pragma once

#include "platform/mox/Entity.h"
#include "platform/mox/Time.h"

namespace Mox {

/// Wakes its observers when the time source's time reaches the time that each asked for.
///
/// The clock does not run by itself: the agent's loop calls `dispatch()` when `timeMin()` has come.
/// Its list of observers, in order of registration, holds no references.
class MOX_API Clock : public Entity {
 public:
  class NotifieeConst;

  explicit Clock(Name name) noexcept;
  ~Clock() override;  // by then it has no observers: they hold it

  MoxType const* fwkType() const override;
  static MoxType const* _fwkType();

  /// The earliest wake-up that an observer waits for; `never` when there is none.
  double timeMin() const noexcept;

  /// Wakes every observer whose time has come, by wake-up time, then in order of registration, each
  /// at most once. An observer's `timeMin` goes back to `never` just before its `onTime()`. One
  /// that is gone, has left or was moved to a later time meanwhile is not woken; the wake-up of one
  /// that is marked for deletion waits until it no longer is. An exception that leaves `onTime()`
  /// is reported to that observer, one that leaves the report to nobody; the others are still
  /// woken.
  void dispatch();

 private:
  void append(NotifieeConst const& observer) const noexcept;
  void remove(NotifieeConst const& observer) const noexcept;
  static void wake(NotifieeConst& observer) noexcept;
  static void report(NotifieeConst& observer) noexcept;

  mutable NotifieeConst const* first_ = nullptr;  // of the observers, linked by their `next_`
};

/// Observer of a clock.
class MOX_API Clock::NotifieeConst : public Mox::Entity::NotifieeConst {
 public:
  void isRegisteredNotifieeIs(bool registered) const override;
  String8 name() const override;
  /// Accepts any framework object; one that is no clock counts as none. A registered observer moves
  /// from the old clock to the new one.
  void notifierIs(Ptr<PtrInterface const> const& notifier) override;

  /// The clock's time has reached `timeMin()`.
  virtual void onTime();

  ~NotifieeConst() override;

  Ptr<Clock const> notifier() const noexcept { return lentNotifier<Clock>(); }
  bool isRegisteredNotifiee() const noexcept { return registered_; }
  /// When to be woken: 0 at first, that is at the next dispatch; `never` for not at all.
  double timeMin() const noexcept { return timeMin_; }
  void timeMinIs(double at) noexcept { timeMin_ = at; }

 private:
  friend class Clock;
  Clock const* clock() const noexcept { return static_cast<Clock const*>(rawNotifier()); }
  double dueAt() const noexcept {
    if (moxMarkedForDeletion()) return never;
    return timeMin_;
  }

  double timeMin_ = 0;
  bool mutable registered_ = false;
  mutable NotifieeConst const* next_ = nullptr;  // on the clock's list
};

}  // namespace Mox
