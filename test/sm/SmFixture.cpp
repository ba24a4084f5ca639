#include "test/sm/SmFixture.h"

#include <cerrno>
#include <cstdlib>

#include "platform/mox/Trace.h"

namespace Hardware::Kest::Slice {

std::string assertion(std::string const& report) {
  return std::string(program_invocation_short_name) + ": " + report + "\n";
}

KestSliceDmaConfig::SwitchPort port(char const* ifName) {
  KestSliceDmaConfig::SwitchPort record;
  record.ifNameIs(ifName);
  record.destIdIs(7);
  record.shadowIntfIdIs(4096);
  record.trafficClassIs(3);
  record.devNameIs("fap0");
  record.fapNumIs(1);
  record.ctrlIs(true);
  record.macAddrIs(Pelk::EthAddr("00:1c:73:0a:0b:0c"));
  return record;
}

std::string ifadd(std::string const& ifName) {
  return "kestDmaIfadd('" + ifName + "', 7, -1, 3, 'fap0', 1, true, false, '00:1c:73:0a:0b:0c')";
}

KestSliceDmaConfig::Device device(char const* devName) {
  KestSliceDmaConfig::Device record;
  record.devNameIs(devName);
  record.pciHamIs(new Fru::PciHam("0000:05:00.0"));
  record.fapTypeIs(FapType::fapTypeArad_);
  record.numFapsIs(2);
  record.cpuTmSysPortIs(11);
  record.cpuEthSysPortIs(12);
  record.cpuRawSysPortIs(13);
  record.sflowPortIs(14);
  record.cpuAradSysPortIs(15);
  record.cpuAradIs(16);
  record.cpuAradBridgeIs(17);
  return record;
}

KestSliceDmaStatus::SwitchPort statusPort(char const* ifName, bool created) {
  KestSliceDmaStatus::SwitchPort record;
  record.ifNameIs(ifName);
  record.createdIs(created);
  return record;
}

KestSliceDmaStatus::Device statusDevice(char const* devName, bool registered) {
  KestSliceDmaStatus::Device record;
  record.devNameIs(devName);
  record.registeredIs(registered);
  return record;
}

SmTest::SmTest() {
  unsetenv("SIMULATION_VMID");
  INTF_ADD_RETRY_TIMEOUT_SECONDS = 60;
  Mox::traceSettingIs("KestSliceDma/");
  Mox::traceStreamIs(&traceStream_);
  Mox::activityManager()->clockIs(clock);
  sm = kestSliceDmaSmFactory(config, status);
}

SmTest::~SmTest() {
  Mox::traceStreamIs(nullptr);
}

void SmTest::traceOn(std::string const& levels) {
  Mox::traceSettingIs("KestSliceDma/" + levels);
}

void SmTest::pass(std::int64_t microseconds) {
  time.advance(microseconds);
  clock->dispatch();
}

void SmTest::createPort(char const* ifName) {
  config->switchPortIs(port(ifName));
  journal.taken();
}

void SmTest::registerDevice(char const* devName, DeviceState state) {
  config->deviceIs(device(devName));
  config->deviceStateIs(devName, state);
  journal.taken();
}

}  // namespace Hardware::Kest::Slice
