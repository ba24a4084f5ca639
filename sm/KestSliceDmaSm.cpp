#include "sm/KestSliceDmaSm.h"

#include <cstdlib>
#include <limits>
#include <utility>

#include "platform/mox/MoxType.h"
#include "sm/detail/AtEnd.h"
#include "sm/detail/Points.h"

namespace Hardware::Kest::Slice {

Mox::Ptr<KestSliceDmaSm> kestSliceDmaSmFactory(Mox::Ptr<KestSliceDmaConfig const> const& config,
                                               Mox::Ptr<KestSliceDmaStatus> const& status) {
  return KestSliceDmaSm::KestSliceDmaSmIs(config, status);
}

Mox::Ptr<KestSliceDmaSm> KestSliceDmaSm::KestSliceDmaSmIs(
    Mox::Ptr<KestSliceDmaConfig const> const& config, Mox::Ptr<KestSliceDmaStatus> const& status) {
  Mox::Ptr<KestSliceDmaSm> sm(new KestSliceDmaSm(config, status));
  sm->hasNotificationActiveIs(true);
  return sm;
}

KestSliceDmaSm::KestSliceDmaSm(Mox::Ptr<KestSliceDmaConfig const> const& config,
                               Mox::Ptr<KestSliceDmaStatus> status)
    : config_(config ? newConfig(config) : nullptr), status_(std::move(status)) {
  handleInitialized();
}

KestSliceDmaSm::~KestSliceDmaSm() {
  KestSliceDmaSm::moxDoZombieReactors(true);
  if (config_) config_->kestSliceDmaSmIs(nullptr);
  if (stateTimer_) stateTimer_->kestSliceDmaSmIs(nullptr);
}

Mox::MoxType const* KestSliceDmaSm::fwkType() const {
  return _fwkType();
}

void KestSliceDmaSm::hasNotificationActiveIs(bool active) {
  if (active == hasNotificationActive()) return;
  Mox::PtrInterface::hasNotificationActiveIs(active);
  if (config_) config_->hasNotificationActiveIs(active);
  if (stateTimer_) stateTimer_->hasNotificationActiveIs(active);
}

void KestSliceDmaSm::moxDoZombieReactors(bool zombie) {
  if (zombie == moxMarkedForDeletion()) return;
  Mox::Ptr<MoxConfig> const config = config_;
  Mox::Ptr<MoxStateTimer> const timer = stateTimer_;
  if (config) config->moxDoZombieReactors(zombie);
  if (timer) timer->moxDoZombieReactors(zombie);
  moxMarkedForDeletionIs(zombie);
}

Mox::Ptr<KestSliceDmaConfig const> KestSliceDmaSm::config() const {
  return config_ ? config_->notifier() : nullptr;
}

Mox::Ptr<KestSliceDmaSm::MoxConfig> KestSliceDmaSm::newConfig(
    Mox::Ptr<KestSliceDmaConfig const> const& config) {
  Mox::Ptr<MoxConfig> reactor(new MoxConfig(this, config));
  reactor->hasNotificationActiveIs(true);
  return reactor;
}

void KestSliceDmaSm::configIs(Mox::Ptr<KestSliceDmaConfig const> const& config) {
  detail::bindReactor(*this, config_, config,
                      [this](auto const& target) { return newConfig(target); });
}

Mox::Ptr<KestSliceDmaConfig const> KestSliceDmaSm::configDel() {
  return detail::unbindReactor(config_);
}

Mox::Ptr<Mox::Clock const> KestSliceDmaSm::stateTimer() const {
  return stateTimer_ ? stateTimer_->notifier() : nullptr;
}

Mox::Ptr<KestSliceDmaSm::MoxStateTimer> KestSliceDmaSm::newStateTimer(
    Mox::Ptr<Mox::Clock const> const& clock) {
  Mox::Ptr<MoxStateTimer> reactor(new MoxStateTimer(this, clock));
  reactor->hasNotificationActiveIs(true);
  return reactor;
}

void KestSliceDmaSm::stateTimerIs(Mox::Ptr<Mox::Clock const> const& clock) {
  auto const self = kept();
  detail::bindReactor(*this, stateTimer_, clock,
                      [this](auto const& target) { return newStateTimer(target); });
}

Mox::Ptr<Mox::Clock const> KestSliceDmaSm::stateTimerDel() {
  return detail::unbindReactor(stateTimer_);
}

void KestSliceDmaSm::modeIs(SmMode mode) {
  if (mode == mode_) return;
  mode_ = mode;
  handleMode();
}

void KestSliceDmaSm::handleMode() {
  auto const self = kept();
  detail::AtEnd const arm([this] {  // also when the trace point throws
    if (armsPoll(mode_)) armPoll();
  });
  detail::traceSignature(2, detail::handler::handleMode, detail::line::handleMode);
}

bool KestSliceDmaSm::armsPoll(SmMode mode) {
  return mode == SmMode::smModePolling_ && std::getenv("SIMULATION_VMID") == nullptr;
}

void KestSliceDmaSm::handleInitialized() {
  auto const self = kept();
  detail::traceSignature(2, detail::handler::handleInitialized, detail::line::handleInitialized);
  stateTimerIs(Mox::activityManager()->clock());
  // A poll may have dropped the timer.
  if (stateTimer_) stateTimer_->timeMinIs(std::numeric_limits<double>::infinity());
}

}  // namespace Hardware::Kest::Slice
