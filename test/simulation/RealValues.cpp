#include "test/simulation/RealValues.h"

namespace Simulation {

void makeValue(ConfigSwitchPort& port, Mox::String8 const& key, std::int32_t number,
               Handles const&) {
  PortRow const& row = portRow(number);
  port.ifNameIs(key);
  port.destIdIs(row.destId);
  port.shadowIntfIdIs(row.shadowIntfId);
  port.trafficClassIs(row.trafficClass);
  port.devNameIs(row.devName);
  port.fapNumIs(row.fapNum);
  port.ctrlIs(row.ctrl);
  port.hwLagIs(row.hwLag);
  if (row.macAddr != noMac) port.macAddrIs(Pelk::EthAddr(Mox::String8(row.macAddr)));
}

void makeValue(ConfigDevice& device, Mox::String8 const& key, std::int32_t number,
               Handles const& handles) {
  DeviceRow const& row = deviceRow(number);
  device.devNameIs(key);
  if (row.handle >= 0) device.pciHamIs(handles[static_cast<std::size_t>(row.handle)]);
  device.fapTypeIs(static_cast<Hardware::Kest::FapType>(row.fapType));
  device.numFapsIs(row.numFaps);
  device.cpuTmSysPortIs(row.firstPort);
  device.cpuEthSysPortIs(row.firstPort + 1);
  device.cpuRawSysPortIs(row.firstPort + 2);
  device.sflowPortIs(row.firstPort + 3);
  device.cpuAradSysPortIs(row.firstPort + 4);
  device.cpuAradIs(row.firstPort + 5);
  device.cpuAradBridgeIs(row.firstPort + 6);
}

}  // namespace Simulation
