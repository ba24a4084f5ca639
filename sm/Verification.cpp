#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "driver/KestDma.h"
#include "sm/KestSliceDmaSm.h"
#include "sm/detail/AtEnd.h"
#include "sm/detail/Points.h"

namespace Hardware::Kest::Slice {

namespace {

constexpr int noSuchDevice = 19;  // ENODEV
constexpr int deviceGoneSignal = 7;

char const* upOrDown(bool up) {
  return up ? "up" : "down";
}

void verify(bool holds, char const* expression, unsigned lineNumber) {
  if (!holds) detail::assertionFailed(expression, detail::handler::doVerify, lineNumber);
}

/// Runs one step of the last report. The process ends whether it succeeds or not, so what it throws
/// is dropped.
template <class Step>
void lastStep(Step const& step) noexcept {
  try {
    step();
  } catch (...) {  // NOLINT(bugprone-empty-catch): the steps that are left matter more
  }
}

/// A chip went up or down behind the machine's back. Whatever fails on the way, it ends in `abort`.
[[noreturn]] void stateMismatch(Mox::String const& devName, bool expectedUp, bool up) noexcept {
  std::signal(SIGPIPE, SIG_IGN);  // nobody may be left to read standard error
  std::fprintf(stderr, "%s: %s expected state: %s, actual state: %s\n",
               detail::handler::handleTimerExpired.name, devName.charPtr(), upOrDown(expectedUp),
               upOrDown(up));
  lastStep([] { kestDmaDump(); });
  lastStep(
      [&] { Mox::log(detail::deviceStateError(), devName, upOrDown(expectedUp), upOrDown(up)); });
  std::abort();
}

void pollDevice(Mox::String const& devName, DeviceState expected) {
  bool up = false;
  int const result = kestDmaIsDeviceUp(devName, &up);
  if (result != 0) {
    std::fprintf(stderr, "kestDmaIsDeviceUp %s returned %d\n", devName.charPtr(), result);
    if (result != noSuchDevice) {
      detail::assertionFailed("false", detail::handler::handleTimerExpired,
                              detail::line::pollFailed);
    }
    std::raise(deviceGoneSignal);
  }
  if (expected == DeviceState::deviceStateUnknown_) return;
  if (expected != DeviceState::deviceStateUp_ && expected != DeviceState::deviceStateDown_) {
    detail::assertionFailed(
        "expectedState == DeviceState::deviceStateDown_ || "
        "expectedState == DeviceState::deviceStateUp_",
        detail::handler::handleTimerExpired, detail::line::pollState);
  }
  bool const expectedUp = expected == DeviceState::deviceStateUp_;
  if (expectedUp != up) stateMismatch(devName, expectedUp, up);
}

}  // namespace

void KestSliceDmaSm::armPoll() {
  if (stateTimer_) stateTimer_->timeMinIs(Mox::now() + pollPeriodSeconds);
}

void KestSliceDmaSm::handleTimerExpired() {
  auto const self = kept();
  detail::AtEnd const again([this] { armPoll(); });  // a pass that throws must not be the last one
  detail::traceSignature(8, detail::handler::handleTimerExpired, detail::line::handleTimerExpired);
  for (auto it = status_->deviceStateIteratorConst(); it; ++it) pollDevice(it.key(), it.value());
}

void KestSliceDmaSm::doVerify() {
  auto const self = kept();
  auto const config = this->config();
  detail::traceSignature(0, detail::handler::doVerify, detail::line::doVerify);
  for (auto it = config->switchPortIteratorConst(); it; ++it) {
    verify(status_->switchPort(it->ifName()).created(),
           "status()->switchPort( iterDev->ifName() ).created()", detail::line::verifyCreated);
  }
  for (auto it = config->deviceIteratorConst(); it; ++it) {
    Mox::String const devName = it->devName();
    bool const registered = status_->device(devName).registered();
    DeviceState const confState = config->deviceState(devName);
    DeviceState const statState = status_->deviceState(devName);
    detail::trace(0, detail::handler::doVerify, detail::line::verifyDevice, [&](std::ostream& out) {
      out << detail::handler::doVerify.name << " device: '" << devName << "' registered "
          << registered << " confState: " << valueToStrep(confState)
          << " statState: " << valueToStrep(statState);
    });
    verify(registered, "status()->device( iterDev->devName() ).registered()",
           detail::line::verifyRegistered);
    verify(statState == confState,
           "status()->deviceState( iterDev->devName() ) == "
           "config()->deviceState( iterDev->devName() )",
           detail::line::verifyState);
  }
}

}  // namespace Hardware::Kest::Slice
