#pragma once

// The nine operations of a driver, for one source file of a test program. That file defines
// `driven` in namespace Hardware::Kest before it includes this: it is given the operation's name
// and address and the arguments, and answers.

// Visible to the library that calls them.
#pragma GCC visibility push(default)
#include "driver/KestDma.h"
#pragma GCC visibility pop

namespace Hardware::Kest {

int kestDmaIfadd(char const* ifName, int destId, int shadowIntfId, int trafficClass,
                 Mox::String8 devName, int fapNum, bool ctrl, bool hwLag, char const* macAddr) {
  return driven("kestDmaIfadd", &kestDmaIfadd, ifName, destId, shadowIntfId, trafficClass, devName,
                fapNum, ctrl, hwLag, macAddr);
}

int kestDmaIfdel(char const* ifName) {
  return driven("kestDmaIfdel", &kestDmaIfdel, ifName);
}

int kestDmaNativeVlan(char const* ifName, bool mode, unsigned short vlanId) {
  return driven("kestDmaNativeVlan", &kestDmaNativeVlan, ifName, mode, vlanId);
}

int kestDmaDeviceRename(Mox::String8 devName, Mox::Ptr<Fru::PciHam const> pciHam) {
  return driven("kestDmaDeviceRename", &kestDmaDeviceRename, devName, pciHam);
}

int kestDmaDeviceParam(Mox::String8 devName, unsigned numFaps, FapType fapType,
                       unsigned cpuTmSysPort, unsigned cpuEthSysPort, unsigned cpuRawSysPort,
                       unsigned sflowPort, unsigned cpuAradSysPort, unsigned cpuArad,
                       unsigned cpuAradBridge) {
  return driven("kestDmaDeviceParam", &kestDmaDeviceParam, devName, numFaps, fapType, cpuTmSysPort,
                cpuEthSysPort, cpuRawSysPort, sflowPort, cpuAradSysPort, cpuArad, cpuAradBridge);
}

int kestDmaDeviceDown(Mox::String8 devName) {
  return driven("kestDmaDeviceDown", &kestDmaDeviceDown, devName);
}

int kestDmaDeviceUp(Mox::String8 devName) {
  return driven("kestDmaDeviceUp", &kestDmaDeviceUp, devName);
}

#ifndef KEST_LACKS_IS_DEVICE_UP
int kestDmaIsDeviceUp(Mox::String8 devName, bool* up) {
  return driven("kestDmaIsDeviceUp", &kestDmaIsDeviceUp, devName, up);
}
#endif

void kestDmaDump() {
  static_cast<void>(driven("kestDmaDump", &kestDmaDump));
}

}  // namespace Hardware::Kest
