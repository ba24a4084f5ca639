#pragma once

#include <utility>

#include "platform/mox/Ptr.h"

namespace Hardware::Kest::Slice {

class KestSliceDmaSm;

namespace detail {

/// A reactor of the state machine: an observer (`Notifiee`) that calls its machine back.
///
/// Ownership. The machine holds the reactor; the reactor's pointer back is not counted and is
/// cleared when the machine lets go of it. A reactor that is marked for deletion (a zombie) passes
/// nothing on. One that is not has a machine.
template <class Notifiee>
class Reactor : public Notifiee {
 public:
  KestSliceDmaSm* kestSliceDmaSm() const noexcept { return kestSliceDmaSm_; }
  void kestSliceDmaSmIs(KestSliceDmaSm* sm) noexcept { kestSliceDmaSm_ = sm; }

  /// Whether that is the notifier; null asks whether there is none.
  bool observes(Mox::PtrInterface const* object) const noexcept {
    return this->notifier().ptr() == object;
  }

  /// Deactivating leaves the notifier's observers; activating joins them again if the reactor was
  /// among them when it was deactivated.
  void hasNotificationActiveIs(bool active) override {
    if (active == this->hasNotificationActive()) return;
    Notifiee::hasNotificationActiveIs(active);
    if (!active) wasRegistered_ = this->isRegisteredNotifiee();
    if (wasRegistered_) this->isRegisteredNotifieeIs(active);
  }

  /// Makes the reactor a zombie, or brings it back.
  virtual void moxDoZombieReactors(bool zombie) {
    if (zombie == this->moxMarkedForDeletion()) return;
    if (!observes(nullptr)) this->hasNotificationActiveIs(!zombie);
    this->moxMarkedForDeletionIs(zombie);
  }

 protected:
  explicit Reactor(KestSliceDmaSm* sm) noexcept : kestSliceDmaSm_(sm) {}

 private:
  KestSliceDmaSm* kestSliceDmaSm_;
  bool wasRegistered_ = false;
};

/// Takes the reactor out of `field`, silenced and without its machine. There must be one.
template <class R>
Mox::Ptr<R> releaseReactor(Mox::Ptr<R>& field) {
  Mox::Ptr<R> reactor = std::exchange(field, nullptr);
  reactor->moxDoZombieReactors(true);
  reactor->kestSliceDmaSmIs(nullptr);
  return reactor;
}

/// Makes the reactor in `field` observe `notifier`: re-points the one that is there, makes one with
/// `make(notifier)` when there is none, releases it when `notifier` is null. Nothing happens when
/// it observes that already. `field` belongs to `machine`, which the caller holds; the reactor
/// becomes a zombie exactly when the machine is one.
template <class R, class Notifier, class Make>
void bindReactor(Mox::PtrInterface const& machine, Mox::Ptr<R>& field,
                 Mox::Ptr<Notifier> const& notifier, Make const& make) {
  bool const bound = field ? field->observes(notifier.ptr()) : !notifier;
  if (bound) return;
  if (!notifier) {
    releaseReactor(field);
    return;
  }
  if (!field) field = make(notifier);
  Mox::Ptr<R> const reactor = field;
  reactor->notifierIs(notifier);
  bool const isStillBound = field == reactor;  // re-pointing polls, and a poll may unbind
  if (isStillBound) reactor->moxDoZombieReactors(machine.moxMarkedForDeletion());
}

/// Unbinds and returns what was observed; null when there is no reactor.
template <class R>
auto unbindReactor(Mox::Ptr<R>& field) -> decltype(field->notifier()) {
  if (!field) return nullptr;
  Mox::Ptr<R> const reactor = releaseReactor(field);
  reactor->hasNotificationActiveIs(false);
  return reactor->notifier();
}

}  // namespace detail
}  // namespace Hardware::Kest::Slice
