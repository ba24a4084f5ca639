#include "test/simulation/DriverCalls.h"

#include <cstdlib>

#include "test/simulation/Text.h"
#include "test/simulation/Values.h"

// What the library asks of its driver, visible to it.
#pragma GCC visibility push(default)
#include "driver/KestDma.h"
#pragma GCC visibility pop

namespace Simulation {

namespace {

DriverCalls* currentCalls = nullptr;

/// The number of the name; one that is none has no business here.
unsigned known(unsigned collection, Mox::String8 const& name) {
  unsigned const key = keyOf(collection, name);
  if (key == keyCount) std::abort();
  return key;
}

/// Writes down a call for `name`, and `others` behind it.
template <class... Parts>
DriverCalls& write(char const* operation, std::string_view name, Parts const&... others) {
  DriverCalls& calls = DriverCalls::current();
  calls.add(text(operation, "('", name, "'", others..., ")"));
  return calls;
}

}  // namespace

DriverCalls::DriverCalls(Driver& driver, Support::Journal& journal,
                         std::function<void(Effect)> apply)
    : driver_(driver), journal_(journal), apply_(std::move(apply)) {
  currentCalls = this;
}

DriverCalls::~DriverCalls() {
  currentCalls = nullptr;
}

DriverCalls& DriverCalls::current() {
  if (currentCalls == nullptr) std::abort();
  return *currentCalls;
}

}  // namespace Simulation

namespace Hardware::Kest {

namespace {

using Simulation::devices;
using Simulation::DriverCalls;
using Simulation::known;
using Simulation::switchPorts;
using Simulation::write;

}  // namespace

int kestDmaIfadd(char const* ifName, int destId, int shadowIntfId, int trafficClass,
                 Mox::String8 devName, int fapNum, bool ctrl, bool hwLag, char const* macAddr) {
  DriverCalls& calls =
      write("kestDmaIfadd", ifName, ", ", destId, ", ", shadowIntfId, ", ", trafficClass, ", '",
            devName.view(), "', ", fapNum, ", ", ctrl, ", ", hwLag, ", '", macAddr, "'");
  return calls.called(calls.driver().ifadd(known(switchPorts, ifName)));
}

int kestDmaIfdel(char const* ifName) {
  DriverCalls& calls = write("kestDmaIfdel", ifName);
  return calls.called(calls.driver().ifdel(known(switchPorts, ifName)));
}

int kestDmaNativeVlan(char const* ifName, bool mode, unsigned short vlanId) {
  DriverCalls& calls = write("kestDmaNativeVlan", ifName, ", ", mode, ", ", vlanId);
  return calls.called(calls.driver().nativeVlan(known(switchPorts, ifName), vlanId));
}

int kestDmaDeviceRename(Mox::String8 devName, Mox::Ptr<Fru::PciHam const> pciHam) {
  std::string handle = "null";
  if (pciHam) handle = Simulation::text("'", pciHam->name().string().view(), "'");
  DriverCalls& calls = write("kestDmaDeviceRename", devName.view(), ", ", handle);
  return calls.called(calls.driver().rename(known(devices, devName)));
}

int kestDmaDeviceParam(Mox::String8 devName, unsigned numFaps, FapType fapType,
                       unsigned cpuTmSysPort, unsigned cpuEthSysPort, unsigned cpuRawSysPort,
                       unsigned sflowPort, unsigned cpuAradSysPort, unsigned cpuArad,
                       unsigned cpuAradBridge) {
  DriverCalls& calls =
      write("kestDmaDeviceParam", devName.view(), ", ", numFaps, ", ", static_cast<int>(fapType),
            ", ", cpuTmSysPort, ", ", cpuEthSysPort, ", ", cpuRawSysPort, ", ", sflowPort, ", ",
            cpuAradSysPort, ", ", cpuArad, ", ", cpuAradBridge);
  return calls.called(calls.driver().param(known(devices, devName)));
}

int kestDmaDeviceDown(Mox::String8 devName) {
  DriverCalls& calls = write("kestDmaDeviceDown", devName.view());
  return calls.called(calls.driver().down(known(devices, devName)));
}

int kestDmaDeviceUp(Mox::String8 devName) {
  DriverCalls& calls = write("kestDmaDeviceUp", devName.view());
  return calls.called(calls.driver().up(known(devices, devName)));
}

int kestDmaIsDeviceUp(Mox::String8 devName, bool* up) {
  DriverCalls& calls = write("kestDmaIsDeviceUp", devName.view());
  return calls.called(calls.driver().isUp(known(devices, devName), up));
}

void kestDmaDump() {
  DriverCalls::current().add("kestDmaDump()");
}

}  // namespace Hardware::Kest
