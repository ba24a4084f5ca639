#include "platform/mox/Clock.h"

#include <algorithm>
#include <map>

#include "platform/mox/Activity.h"
#include "platform/mox/GenericIfEntity.h"

namespace Mox {

MoxType const* Clock::_fwkType() {
  static EntityType const type("Mox::Clock");
  return &type;
}

MoxType const* ActivityConfig::_fwkType() {
  static EntityType const type("Mox::ActivityConfig");
  return &type;
}

Ptr<ActivityManagerConfig> activityManager() {
  static Ptr<ActivityManagerConfig> const manager(new ActivityManagerConfig);
  return manager;
}

double Clock::timeMin() const {
  double earliest = never;
  for (NotifieeConst const* observer : observers_) earliest = std::min(earliest, observer->dueAt());
  return earliest;
}

void Clock::dispatch() {
  Ptr<Clock> const self(this);
  double const now = Mox::now();
  std::multimap<double, Ptr<NotifieeConst>> due;  // equal times stay in the order of registration
  for (NotifieeConst const* one : observers_) {
    if (one->dueAt() <= now) due.emplace(one->dueAt(), const_cast<NotifieeConst*>(one));
  }
  for (auto const& [time, one] : due) {
    bool const hasLeft = one->clock() != this || !one->registered_;
    if (hasLeft || one->references() == 1 || one->dueAt() > now) continue;
    one->timeMin_ = never;
    try {
      ExpectationScope const scope;
      one->onTime();
    } catch (...) {
      try {
        one->onNotificationException(258);
      } catch (...) {
      }
    }
  }
}

void Clock::NotifieeConst::isRegisteredNotifieeIs(bool registered) const {
  if (registered == registered_) return;
  registered_ = registered;
  if (clock() == nullptr) return;
  if (registered) {
    clock()->observers_.push_back(this);
  } else {
    clock()->observers_.remove(this);
  }
}

void Clock::NotifieeConst::notifierIs(Ptr<PtrInterface const> const& notifier) {
  Ptr<Clock const> const next = ptrCast<Clock const>(notifier);
  if (next.ptr() == clock()) return;
  bool const registered = registered_;
  NotifieeConst::isRegisteredNotifieeIs(false);
  Mox::Entity::NotifieeConst::notifierIs(next);
  NotifieeConst::isRegisteredNotifieeIs(registered);
}

}  // namespace Mox
