#include "driver/KestDma.h"

#include "driver/sim/SimDriver.h"

/// The nine driver functions, on the process's simulated slice.
namespace Hardware::Kest {

namespace {

/// A null name is answered as an empty one.
Mox::String8 string(char const* chars) {
  return chars == nullptr ? "" : chars;
}

}  // namespace

KEST_SIM_API int kestDmaIfadd(char const* ifName, int destId, int shadowIntfId, int trafficClass,
                              Mox::String8 devName, int fapNum, bool ctrl, bool hwLag,
                              char const* macAddr) {
  return Sim::simDriver().ifadd(string(ifName), {destId, shadowIntfId, trafficClass, devName,
                                                 fapNum, ctrl, hwLag, string(macAddr)});
}

KEST_SIM_API int kestDmaIfdel(char const* ifName) {
  return Sim::simDriver().ifdel(string(ifName));
}

KEST_SIM_API int kestDmaNativeVlan(char const* ifName, bool mode, unsigned short vlanId) {
  return Sim::simDriver().nativeVlan(string(ifName), mode, vlanId);
}

KEST_SIM_API int kestDmaDeviceRename(Mox::String8 devName, Mox::Ptr<Fru::PciHam const> pciHam) {
  return Sim::simDriver().deviceRename(devName, pciHam);
}

KEST_SIM_API int kestDmaDeviceParam(Mox::String8 devName, unsigned numFaps, FapType fapType,
                                    unsigned cpuTmSysPort, unsigned cpuEthSysPort,
                                    unsigned cpuRawSysPort, unsigned sflowPort,
                                    unsigned cpuAradSysPort, unsigned cpuArad,
                                    unsigned cpuAradBridge) {
  return Sim::simDriver().deviceParam(
      devName, {numFaps, fapType, cpuTmSysPort, cpuEthSysPort, cpuRawSysPort, sflowPort,
                cpuAradSysPort, cpuArad, cpuAradBridge});
}

KEST_SIM_API int kestDmaDeviceDown(Mox::String8 devName) {
  return Sim::simDriver().deviceDown(devName);
}

KEST_SIM_API int kestDmaDeviceUp(Mox::String8 devName) {
  return Sim::simDriver().deviceUp(devName);
}

KEST_SIM_API int kestDmaIsDeviceUp(Mox::String8 devName, bool* up) {
  return Sim::simDriver().isDeviceUp(devName, up);
}

KEST_SIM_API void kestDmaDump() {
  Sim::simDriver().dump();
}

}  // namespace Hardware::Kest
