#include "test/sm/SmFixture.h"

#include <cerrno>
#include <cstdlib>

#include "platform/mox/Trace.h"

namespace Hardware::Kest::Slice {

std::string assertion(std::string const& report) {
  return std::string(program_invocation_short_name) + ": " + report + "\n";
}

KestSliceDmaConfig::SwitchPort port(char const* ifName) {
  return KestSliceDmaConfig::SwitchPort({.ifName = ifName,
                                         .destId = 7,
                                         .shadowIntfId = 4096,
                                         .trafficClass = 3,
                                         .devName = "fap0",
                                         .fapNum = 1,
                                         .ctrl = true,
                                         .hwLag = false,
                                         .macAddr = Pelk::EthAddr("00:1c:73:0a:0b:0c")});
}

std::string ifadd(std::string const& ifName) {
  return "kestDmaIfadd('" + ifName + "', 7, -1, 3, 'fap0', 1, true, false, '00:1c:73:0a:0b:0c')";
}

KestSliceDmaConfig::Device device(char const* devName) {
  return KestSliceDmaConfig::Device({.devName = devName,
                                     .pciHam = new Fru::PciHam("0000:05:00.0"),
                                     .fapType = FapType::fapTypeArad_,
                                     .numFaps = 2,
                                     .cpuTmSysPort = 11,
                                     .cpuEthSysPort = 12,
                                     .cpuRawSysPort = 13,
                                     .sflowPort = 14,
                                     .cpuAradSysPort = 15,
                                     .cpuArad = 16,
                                     .cpuAradBridge = 17});
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
