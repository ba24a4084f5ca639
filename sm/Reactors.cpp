#include <utility>

#include "sm/KestSliceDmaSm.h"
#include "sm/detail/AtEnd.h"

namespace Hardware::Kest::Slice {

KestSliceDmaSm::MoxConfig::MoxConfig(KestSliceDmaSm* sm,
                                     Mox::Ptr<KestSliceDmaConfig const> const& config)
    : Reactor(sm) {
  KestSliceDmaConfig::NotifieeConst::notifierIs(config);
  KestSliceDmaConfig::NotifieeConst::isRegisteredNotifieeIs(true);
}

KestSliceDmaSm::MoxConfig::~MoxConfig() {
  MoxConfig::moxDoZombieReactors(true);
}

void KestSliceDmaSm::MoxConfig::onSwitchPort(Mox::String8 ifName) {
  if (!moxMarkedForDeletion()) kestSliceDmaSm()->handleSwitchPort(std::move(ifName));
}

void KestSliceDmaSm::MoxConfig::onNativeVlan(Mox::String8 ifName) {
  if (!moxMarkedForDeletion()) kestSliceDmaSm()->handleNativeVlan(std::move(ifName));
}

void KestSliceDmaSm::MoxConfig::onSwitchportMode(Mox::String8 ifName) {
  if (!moxMarkedForDeletion()) kestSliceDmaSm()->handleNativeVlan(std::move(ifName));
}

void KestSliceDmaSm::MoxConfig::onDevice(Mox::String8 devName) {
  if (!moxMarkedForDeletion()) kestSliceDmaSm()->handleDevice(std::move(devName));
}

void KestSliceDmaSm::MoxConfig::onDeviceState(Mox::String8 devName) {
  if (!moxMarkedForDeletion()) kestSliceDmaSm()->handleDeviceState(std::move(devName));
}

KestSliceDmaSm::MoxStateTimer::MoxStateTimer(KestSliceDmaSm* sm,
                                             Mox::Ptr<Mox::Clock const> const& clock)
    : Reactor(sm) {
  Mox::Clock::NotifieeConst::notifierIs(clock);  // a new timer does not poll
  Mox::Clock::NotifieeConst::isRegisteredNotifieeIs(true);
}

KestSliceDmaSm::MoxStateTimer::~MoxStateTimer() {
  MoxStateTimer::moxDoZombieReactors(true);
}

void KestSliceDmaSm::MoxStateTimer::notifierIs(Mox::Ptr<Mox::PtrInterface const> const& clock) {
  auto const* const next = dynamic_cast<Mox::Clock const*>(clock.ptr());
  if (observes(next)) return;
  Mox::Ptr<MoxStateTimer> const self(this);  // the poll may let go of it
  isRegisteredNotifieeIs(false);
  Mox::Clock::NotifieeConst::notifierIs(next);
  detail::AtEnd const join([this] {  // even if the poll throws: it would be the last one
    bool const isBound = kestSliceDmaSm() != nullptr;  // the poll may have unbound it
    if (isBound) isRegisteredNotifieeIs(!observes(nullptr));
  });
  if (next != nullptr && !moxMarkedForDeletion()) kestSliceDmaSm()->handleTimerExpired();
}

void KestSliceDmaSm::MoxStateTimer::onTime() {
  if (!moxMarkedForDeletion()) kestSliceDmaSm()->handleTimerExpired();
}

}  // namespace Hardware::Kest::Slice
