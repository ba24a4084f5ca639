#include "platform/mox/Clock.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/mox/GenericIfEntity.h"

namespace Mox {

namespace {

/// Stands for the time, which is no registered attribute, where a clock reports exceptions.
constexpr AttributeId timeAttributeId = 258;

}  // namespace

Clock::Clock(Name name) noexcept : Entity(std::move(name)) {}

Clock::~Clock() = default;

MoxType const* Clock::_fwkType() {
  static EntityType const type("Mox::Clock");
  return &type;
}

MoxType const* Clock::fwkType() const {
  return _fwkType();
}

double Clock::timeMin() const noexcept {
  double earliest = never;
  for (auto const* observer = first_; observer != nullptr; observer = observer->next_) {
    earliest = std::min(earliest, observer->dueAt());
  }
  return earliest;
}

void Clock::dispatch() {
  Ptr<Clock> const self(this);  // a woken observer may let go of the clock
  double const now = Mox::now();
  std::vector<Ptr<NotifieeConst>> due;
  for (auto const* observer = first_; observer != nullptr; observer = observer->next_) {
    if (observer->dueAt() <= now) due.emplace_back(const_cast<NotifieeConst*>(observer));
  }
  std::stable_sort(due.begin(), due.end(),
                   [](auto const& a, auto const& b) { return a->timeMin_ < b->timeMin_; });
  for (Ptr<NotifieeConst> const& observer : due) {
    bool const released = observer->references() == 1;
    bool const stillDue =
        observer->registered_ && observer->clock() == this && observer->dueAt() <= now;
    if (released || !stillDue) continue;
    observer->timeMin_ = never;
    wake(*observer);
  }
}

void Clock::append(NotifieeConst const& observer) const noexcept {
  NotifieeConst const** end = &first_;
  while (*end != nullptr) end = &(*end)->next_;
  *end = &observer;
}

void Clock::remove(NotifieeConst const& observer) const noexcept {
  NotifieeConst const** link = &first_;
  while (*link != &observer) link = &(*link)->next_;
  *link = std::exchange(observer.next_, nullptr);
}

void Clock::wake(NotifieeConst& observer) noexcept {
  try {
    ExpectationScope const scope;
    observer.onTime();
  } catch (...) {
    report(observer);
  }
}

void Clock::report(NotifieeConst& observer) noexcept {
  try {
    observer.onNotificationException(timeAttributeId);
  } catch (...) {  // NOLINT(bugprone-empty-catch): nobody is left to tell
  }
}

void Clock::NotifieeConst::isRegisteredNotifieeIs(bool registered) const {
  if (registered_ == registered) return;
  registered_ = registered;
  if (clock() != nullptr && registered) clock()->append(*this);
  if (clock() != nullptr && !registered) clock()->remove(*this);
}

String8 Clock::NotifieeConst::name() const {
  return clock() == nullptr ? String8() : clock()->fullName();
}

void Clock::NotifieeConst::notifierIs(Ptr<PtrInterface const> const& notifier) {
  Ptr<Clock const> const next = ptrCast<Clock const>(notifier);
  if (next.ptr() == clock()) return;
  bool const registered = registered_;
  isRegisteredNotifieeIs(false);
  Mox::Entity::NotifieeConst::notifierIs(next);
  isRegisteredNotifieeIs(registered);
}

void Clock::NotifieeConst::onTime() {}

Clock::NotifieeConst::~NotifieeConst() {
  NotifieeConst::isRegisteredNotifieeIs(false);
}

}  // namespace Mox
