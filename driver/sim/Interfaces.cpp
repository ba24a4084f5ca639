#include "driver/sim/Interfaces.h"

#include <cerrno>
#include <utility>

#include "driver/sim/Devices.h"
#include "driver/sim/Names.h"
#include "platform/mox/RangeException.h"
#include "platform/pelk/EthAddr.h"

namespace Hardware::Kest::Sim {

using Mox::String8;

namespace {

bool isMacAddr(String8 const& text) {
  try {
    Pelk::EthAddr const addr(text);
    return true;
  } catch (Mox::RangeException const&) {
    return false;
  }
}

bool hasFap(Device const& device, int fapNum) {
  unsigned const numFaps = device.param ? device.param->numFaps : Devices::maxFaps;
  return fapNum >= 0 && static_cast<unsigned>(fapNum) < numFaps;
}

}  // namespace

int Interfaces::add(String8 const& ifName, InterfaceParam const& param, Devices const& devices) {
  if (!isDeviceOrInterfaceName(ifName.view()) || !isMacAddr(param.macAddr)) return EINVAL;
  if (!param.devName.empty()) {
    Device const* const device = devices.named(param.devName);
    if (device == nullptr) return ENODEV;
    if (!hasFap(*device, param.fapNum)) return EINVAL;
  }
  Interface const* const there = interfaces_.find(ifName);
  Interface interface = there == nullptr ? Interface() : *there;
  interface.param = param;
  interfaces_.put(ifName, std::move(interface));
  return 0;
}

int Interfaces::del(String8 const& ifName) {
  return interfaces_.remove(ifName) ? 0 : ENODEV;
}

int Interfaces::nativeVlan(String8 const& ifName, bool mode, unsigned short vlanId) {
  Interface const* const there = interfaces_.find(ifName);
  if (there == nullptr) return ENODEV;
  if (!Interface::isNativeVlan(vlanId)) return EINVAL;
  Interface interface = *there;
  interface.nativeVlan = vlanId;
  interface.mode = mode && vlanId != Interface::noVlan;
  interfaces_.put(ifName, std::move(interface));
  return 0;
}

void Interfaces::deviceRenamed(String8 const& from, String8 const& to) {
  if (from.empty() || from == to) return;  // interfaces without a device stay so
  for (auto const& [name, interface] : all()) {
    if (interface.param.devName != from) continue;
    Interface moved = interface;
    moved.param.devName = to;
    interfaces_.put(name, std::move(moved));  // in its place: the walk goes on
  }
}

}  // namespace Hardware::Kest::Sim
