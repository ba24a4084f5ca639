#pragma once

#include <concepts>
#include <ostream>
#include <type_traits>
#include <utility>

#include "driver/sim/Devices.h"
#include "driver/sim/Interfaces.h"
#include "platform/mox/Strep.h"

/// The one table of what interfaces and devices have: each value's members, named in order. It is
/// what state files hold, and what people are shown.
namespace Hardware::Kest::Sim {

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

/// As in "destId 7, shadowIntfId -1".
template <class Param>
std::ostream& streamMembers(std::ostream& out, Param const& param) {
  char const* separator = "";
  forMembers(param, [&]<class Member>(char const* name, Member const& member) {
    out << std::exchange(separator, ", ") << name << ' ';
    if constexpr (std::same_as<Member, bool> || std::same_as<Member, Mox::String8>) {
      out << Mox::valueToStrep(member);
    } else {
      out << member;
    }
  });
  return out;
}

}  // namespace Hardware::Kest::Sim
