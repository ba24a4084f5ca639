#include <utility>

// Seen by the library that calls the operations.
#pragma GCC visibility push(default)
#include "driver/KestDma.h"
#pragma GCC visibility pop
#include "agent/process/DriverOperation.h"
#include "agent/process/SignOfLife.h"

/// The program's own definitions of the nine operations, which the library binds to. Each passes
/// its call on to the loaded driver. Only the agent's program has them: tests link drivers of their
/// own.
namespace Hardware::Kest {

namespace {

/// Waiting for the driver is no hang: creating an interface is retried for up to a minute.
template <auto operation, class... Arguments>
auto passedOn(Arguments&&... arguments) {
  ::Kest::Agent::giveSignOfLife();
  return ::Kest::Agent::inDriver<operation>(std::forward<Arguments>(arguments)...);
}

}  // namespace

int kestDmaIfadd(char const* ifName, int destId, int shadowIntfId, int trafficClass,
                 Mox::String8 devName, int fapNum, bool ctrl, bool hwLag, char const* macAddr) {
  return passedOn<&kestDmaIfadd>(ifName, destId, shadowIntfId, trafficClass, std::move(devName),
                                 fapNum, ctrl, hwLag, macAddr);
}

int kestDmaIfdel(char const* ifName) {
  return passedOn<&kestDmaIfdel>(ifName);
}

int kestDmaNativeVlan(char const* ifName, bool mode, unsigned short vlanId) {
  return passedOn<&kestDmaNativeVlan>(ifName, mode, vlanId);
}

int kestDmaDeviceRename(Mox::String8 devName, Mox::Ptr<Fru::PciHam const> pciHam) {
  return passedOn<&kestDmaDeviceRename>(std::move(devName), std::move(pciHam));
}

int kestDmaDeviceParam(Mox::String8 devName, unsigned numFaps, FapType fapType,
                       unsigned cpuTmSysPort, unsigned cpuEthSysPort, unsigned cpuRawSysPort,
                       unsigned sflowPort, unsigned cpuAradSysPort, unsigned cpuArad,
                       unsigned cpuAradBridge) {
  return passedOn<&kestDmaDeviceParam>(std::move(devName), numFaps, fapType, cpuTmSysPort,
                                       cpuEthSysPort, cpuRawSysPort, sflowPort, cpuAradSysPort,
                                       cpuArad, cpuAradBridge);
}

int kestDmaDeviceDown(Mox::String8 devName) {
  return passedOn<&kestDmaDeviceDown>(std::move(devName));
}

int kestDmaDeviceUp(Mox::String8 devName) {
  return passedOn<&kestDmaDeviceUp>(std::move(devName));
}

int kestDmaIsDeviceUp(Mox::String8 devName, bool* up) {
  return passedOn<&kestDmaIsDeviceUp>(std::move(devName), up);
}

void kestDmaDump() {
  passedOn<&kestDmaDump>();
}

}  // namespace Hardware::Kest
