#include "driver/KestDma.h"
#include "sm/KestSliceDmaSm.h"
#include "sm/detail/Points.h"

namespace Hardware::Kest::Slice {

namespace {

int registerParameters(Mox::String const& devName, KestSliceDmaConfig::Device const& device) {
  return kestDmaDeviceParam(devName, device.numFaps(), device.fapType(), device.cpuTmSysPort(),
                            device.cpuEthSysPort(), device.cpuRawSysPort(), device.sflowPort(),
                            device.cpuAradSysPort(), device.cpuArad(), device.cpuAradBridge());
}

}  // namespace

void KestSliceDmaSm::handleDevice(Mox::String devName) {
  auto const self = kept();
  auto const message = [&](std::ostream& out) {
    out << detail::handler::handleDevice.signature << " device: '" << devName << "'";
  };
  KestSliceDmaConfig::Device const device = config()->device(devName);
  detail::trace(1, detail::handler::handleDevice, detail::line::handleDevice, message);
  if (device.devName().empty()) {
    // The driver keeps the device as it is, and so does the recorded state.
    status_->deviceDel(devName);
    return;
  }
  detail::trace(1, detail::handler::handleDevice, detail::line::registerDevice, message);
  // Neither result matters: whether the device can be used shows when its parameters are given.
  kestDmaDeviceRename(devName, device.pciHam());
  kestDmaDeviceDown(devName);

  KestSliceDmaStatus::Device outcome;
  outcome.devNameIs(devName);
  outcome.registeredIs(registerParameters(devName, device) == 0);
  status_->deviceIs(outcome);
  status_->deviceStateIs(devName, DeviceState::deviceStateUnknown_);
}

void KestSliceDmaSm::handleDeviceState(Mox::String devName) {
  auto const self = kept();
  auto const config = this->config();
  KestSliceDmaStatus::Device const device = status_->device(devName);
  detail::trace(1, detail::handler::handleDeviceState, detail::line::handleDeviceState,
                [&](std::ostream& out) {
                  out << detail::handler::handleDeviceState.signature << " device: '" << devName
                      << "' state: " << config->deviceState(devName) << "/"
                      << status_->deviceState(devName);
                });
  if (!device.registered()) return;

  DeviceState const wanted = config->deviceState(devName);
  if (wanted != DeviceState::deviceStateUp_ && wanted != DeviceState::deviceStateDown_) {
    detail::assertionFailed("false", detail::handler::handleDeviceState, detail::line::wantedState);
  }
  if (status_->deviceState(devName) == wanted) return;
  int const error =
      wanted == DeviceState::deviceStateUp_ ? kestDmaDeviceUp(devName) : kestDmaDeviceDown(devName);
  // On an error the state stays as recorded, so the next notification tries again.
  if (error == 0) status_->deviceStateIs(devName, wanted);
}

}  // namespace Hardware::Kest::Slice
