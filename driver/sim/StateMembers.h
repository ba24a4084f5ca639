#pragma once

#include <concepts>
#include <map>
#include <type_traits>

#include "driver/sim/StateText.h"

/// What a state's document holds, for its writer and its reader: each value's members, named in
/// order.
namespace Hardware::Kest::Sim {

inline constexpr char const* formatName = "kest-dma-sim-state/1";

/// Stands for `formatName` in the document.
struct Format {};

struct Document {
  Format format;
  std::map<Mox::String8, Interface> interfaces;
  std::map<Mox::String8, Device> devices;
};

template <class T, class Plain>
concept Like = std::same_as<std::remove_const_t<T>, Plain>;

/// The collections of a `Document` or a `Change`.
template <class Collections, class Visit>
void forCollections(Collections& all, Visit const& visit) {
  visit("interfaces", all.interfaces);
  visit("devices", all.devices);
}

template <class Visit>
void forMembers(Like<Document> auto& document, Visit const& visit) {
  visit("format", document.format);
  forCollections(document, visit);
}

template <class Visit>
void forMembers(Like<Change> auto& change, Visit const& visit) {
  forCollections(change, visit);
}

template <class Visit>
void forMembers(Like<Interface> auto& interface, Visit const& visit) {
  auto& param = interface.param;
  visit("destId", param.destId);
  visit("shadowIntfId", param.shadowIntfId);
  visit("trafficClass", param.trafficClass);
  visit("devName", param.devName);
  visit("fapNum", param.fapNum);
  visit("ctrl", param.ctrl);
  visit("hwLag", param.hwLag);
  visit("macAddr", param.macAddr);
  visit("nativeVlan", interface.nativeVlan);
  visit("mode", interface.mode);
}

template <class Visit>
void forMembers(Like<Device> auto& device, Visit const& visit) {
  visit("name", device.name);
  visit("param", device.param);
  visit("up", device.up);
  visit("flips", device.flips);
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

}  // namespace Hardware::Kest::Sim
