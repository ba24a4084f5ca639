#include "driver/sim/Devices.h"

#include <cerrno>
#include <ostream>

#include "platform/mox/Strep.h"

namespace Hardware::Kest::Sim {

using Mox::String8;

int Devices::rename(String8 const& devName, String8 const& pciPath) {
  Device& device = devices_[pciPath];
  if (devName.empty()) return EINVAL;
  Device const* const holder = named(devName);
  if (holder != nullptr && holder != &device) return EEXIST;
  device.name = devName;
  return 0;
}

int Devices::param(String8 const& devName, DeviceParam const& param) {
  Device* const device = find(devName);
  if (device == nullptr) return ENODEV;
  if (device->up) return EBUSY;
  if (param.numFaps < 1 || param.numFaps > maxFaps) return EINVAL;
  device->param = param;
  return 0;
}

int Devices::down(String8 const& devName) {
  Device* const device = find(devName);
  if (device == nullptr) return ENODEV;
  device->up = false;
  return 0;
}

int Devices::up(String8 const& devName) {
  Device* const device = find(devName);
  if (device == nullptr) return ENODEV;
  if (!device->param) return EINVAL;
  device->up = true;
  return 0;
}

int Devices::isUp(String8 const& devName, bool* up) const {
  Device const* const device = named(devName);
  if (device == nullptr) return ENODEV;
  *up = device->up;
  return 0;
}

int Devices::flip(String8 const& devName) {
  Device* const device = find(devName);
  if (device == nullptr) return ENODEV;
  device->up = !device->up;
  ++device->flips;
  return 0;
}

Device const* Devices::named(String8 const& devName) const {
  if (devName.empty()) return nullptr;  // a chip without a name is not reached by one
  for (auto const& [path, device] : devices_) {
    if (device.name == devName) return &device;
  }
  return nullptr;
}

String8 Devices::nameAt(String8 const& pciPath) const {
  auto const at = devices_.find(pciPath);
  return at == devices_.end() ? String8() : at->second.name;
}

Device* Devices::find(String8 const& devName) {
  return const_cast<Device*>(named(devName));
}

std::ostream& operator<<(std::ostream& out, DeviceParam const& param) {
  return out << "numFaps " << param.numFaps << ", fapType " << param.fapType << ", cpuTmSysPort "
             << param.cpuTmSysPort << ", cpuEthSysPort " << param.cpuEthSysPort
             << ", cpuRawSysPort " << param.cpuRawSysPort << ", sflowPort " << param.sflowPort
             << ", cpuAradSysPort " << param.cpuAradSysPort << ", cpuArad " << param.cpuArad
             << ", cpuAradBridge " << param.cpuAradBridge;
}

std::ostream& operator<<(std::ostream& out, Device const& device) {
  out << Mox::valueToStrep(device.name) << ", " << (device.up ? "up" : "down") << ", flips "
      << device.flips;
  return device.param ? out << ", " << *device.param : out << ", not registered";
}

}  // namespace Hardware::Kest::Sim
