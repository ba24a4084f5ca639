#pragma once

#include <concepts>
#include <iosfwd>
#include <optional>
#include <type_traits>

#include "driver/KestDma.h"
#include "driver/sim/Export.h"
#include "platform/hardware/kest/FapType.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Sim {

/// What `kestDmaIfadd` asks for, in its order.
struct InterfaceParam {
  int destId = 0;
  int shadowIntfId = -1;  ///< -1: none
  int trafficClass = 0;
  Mox::String8 devName;  ///< may be empty
  int fapNum = 0;
  bool ctrl = false;
  bool hwLag = false;
  Mox::String8 macAddr;  ///< as text

  bool operator==(InterfaceParam const&) const = default;
};

/// One kernel network interface.
struct Interface {
  static constexpr unsigned short lastVlan = 4094;
  static constexpr unsigned short noVlan = noVlanOrInterface;
  static constexpr bool isNativeVlan(unsigned short vlanId) {
    return (vlanId >= 1 && vlanId <= lastVlan) || vlanId == noVlan;
  }

  InterfaceParam param;
  unsigned short nativeVlan = noVlan;
  bool mode = false;  ///< the flag that the native VLAN was set with

  bool operator==(Interface const&) const = default;
};

/// A device's parameters, in the order of `kestDmaDeviceParam`.
struct DeviceParam {
  unsigned numFaps = 1;
  FapType fapType = FapType::fapTypeUnknown_;
  unsigned cpuTmSysPort = 0;
  unsigned cpuEthSysPort = 0;
  unsigned cpuRawSysPort = 0;
  unsigned sflowPort = 0;
  unsigned cpuAradSysPort = 0;
  unsigned cpuArad = 0;
  unsigned cpuAradBridge = 0;

  bool operator==(DeviceParam const&) const = default;
};

/// One chip.
struct Device {
  Mox::String8 name;                 ///< empty until the chip is given one
  std::optional<DeviceParam> param;  ///< none until registered
  bool up = false;
  unsigned flips = 0;  ///< how often it went up or down by itself

  bool operator==(Device const&) const = default;
};

/// As people are shown them.
KEST_SIM_API std::ostream& operator<<(std::ostream& out, InterfaceParam const& param);
KEST_SIM_API std::ostream& operator<<(std::ostream& out, Interface const& interface);
KEST_SIM_API std::ostream& operator<<(std::ostream& out, DeviceParam const& param);
KEST_SIM_API std::ostream& operator<<(std::ostream& out, Device const& device);

// The one table of what interfaces and devices have: each value's members, named in order. It is
// what state files hold, and what people are shown.

template <class T, class Plain>
concept Like = std::same_as<std::remove_const_t<T>, Plain>;

template <class Visit>
void forMembers(Like<InterfaceParam> auto& param, Visit const& visit) {
  visit("destId", param.destId);
  visit("shadowIntfId", param.shadowIntfId);
  visit("trafficClass", param.trafficClass);
  visit("devName", param.devName);
  visit("fapNum", param.fapNum);
  visit("ctrl", param.ctrl);
  visit("hwLag", param.hwLag);
  visit("macAddr", param.macAddr);
}

template <class Visit>
void forMembers(Like<Interface> auto& interface, Visit const& visit) {
  forMembers(interface.param, visit);
  visit("nativeVlan", interface.nativeVlan);
  visit("mode", interface.mode);
}

template <class Visit>
void forMembers(Like<DeviceParam> auto& param, Visit const& visit) {
  visit("numFaps", param.numFaps);
  visit("fapType", param.fapType);
  visit("cpuTmSysPort", param.cpuTmSysPort);
  visit("cpuEthSysPort", param.cpuEthSysPort);
  visit("cpuRawSysPort", param.cpuRawSysPort);
  visit("sflowPort", param.sflowPort);
  visit("cpuAradSysPort", param.cpuAradSysPort);
  visit("cpuArad", param.cpuArad);
  visit("cpuAradBridge", param.cpuAradBridge);
}

template <class Visit>
void forMembers(Like<Device> auto& device, Visit const& visit) {
  visit("name", device.name);
  visit("param", device.param);
  visit("up", device.up);
  visit("flips", device.flips);
}

}  // namespace Hardware::Kest::Sim
