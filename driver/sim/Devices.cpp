#include "driver/sim/Devices.h"

#include <cerrno>
#include <utility>

#include "driver/sim/Names.h"

namespace Hardware::Kest::Sim {

using Mox::String8;

Devices::Devices(std::map<String8, Device> devices) : devices_(std::move(devices)) {
  for (auto const& [path, device] : all()) {
    if (!device.name.empty()) paths_.emplace(device.name, path);
  }
}

int Devices::rename(String8 const& devName, String8 const& pciPath) {
  if (!isPciPath(pciPath.view())) return EINVAL;
  Device const* const there = devices_.find(pciPath);
  Device device = there == nullptr ? Device() : *there;
  devices_.put(pciPath, device);
  if (!isDeviceOrInterfaceName(devName.view())) return EINVAL;
  if (device.name == devName) return 0;
  if (!paths_.emplace(devName, pciPath).second) return EEXIST;
  paths_.erase(device.name);
  device.name = devName;
  devices_.put(pciPath, std::move(device));
  return 0;
}

template <class Change>
int Devices::change(String8 const& devName, Change const& change) {
  auto const at = paths_.find(devName);
  if (at == paths_.end()) return ENODEV;
  Device device = *devices_.find(at->second);
  int const result = change(device);
  if (result == 0) devices_.put(at->second, std::move(device));
  return result;
}

int Devices::param(String8 const& devName, DeviceParam const& param) {
  return change(devName, [&](Device& device) {
    if (device.up) return EBUSY;
    if (param.numFaps < 1 || param.numFaps > maxFaps) return EINVAL;
    device.param = param;
    return 0;
  });
}

int Devices::down(String8 const& devName) {
  return change(devName, [](Device& device) {
    device.up = false;
    return 0;
  });
}

int Devices::up(String8 const& devName) {
  return change(devName, [](Device& device) {
    if (!device.param) return EINVAL;
    device.up = true;
    return 0;
  });
}

int Devices::isUp(String8 const& devName, bool* up) const {
  Device const* const device = named(devName);
  if (device == nullptr) return ENODEV;
  *up = device->up;
  return 0;
}

int Devices::flip(String8 const& devName) {
  return change(devName, [](Device& device) {
    device.up = !device.up;
    ++device.flips;
    return 0;
  });
}

Device const* Devices::named(String8 const& devName) const {
  String8 const* const path = pathOf(devName);
  return path == nullptr ? nullptr : devices_.find(*path);
}

String8 const* Devices::pathOf(String8 const& devName) const {
  auto const at = paths_.find(devName);
  return at == paths_.end() ? nullptr : &at->second;
}

String8 Devices::nameAt(String8 const& pciPath) const {
  Device const* const device = devices_.find(pciPath);
  return device == nullptr ? String8() : device->name;
}

}  // namespace Hardware::Kest::Sim
