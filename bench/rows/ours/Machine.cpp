#include "bench/rows/Machine.h"

#include "bench/Ours.h"
#include "bench/rows/Rows.h"
#include "sm/KestSliceDmaSm.h"

namespace Kest::Bench {

namespace {

using Hardware::Kest::Slice::DeviceState;
using Hardware::Kest::Slice::KestSliceDmaConfig;
using Hardware::Kest::Slice::KestSliceDmaSm;
using Hardware::Kest::Slice::KestSliceDmaStatus;

class OurMachine {
 public:
  using Record = Ours::Record;

  static constexpr char const* name = "ours";

  static Record record(Port const& port) { return recordOf(port); }
  void put(Record const& record) { config_->switchPortIs(record); }
  void vlanPut(std::string const& ifName, std::uint16_t vlan, Bridging::SwitchportMode mode) {
    config_->nativeVlanIs(Mox::String8(ifName), vlan);
    config_->switchportModeIs(Mox::String8(ifName), mode);
  }
  bool isCreated(std::string const& ifName) const {
    return status_->switchPort(Mox::String8(ifName)).created();
  }
  std::uint16_t vlanSet(std::string const& ifName) const {
    return status_->nativeVlan(Mox::String8(ifName));
  }

  void deviceIsUp(std::string const& devName) {
    status_->deviceStateIs(Mox::String8(devName), DeviceState::deviceStateUp_);
  }
  void poll() { sm_->handleTimerExpired(); }

 private:
  Mox::Ptr<KestSliceDmaConfig> config_{new KestSliceDmaConfig("config")};
  Mox::Ptr<KestSliceDmaStatus> status_{new KestSliceDmaStatus("status")};
  Mox::Ptr<KestSliceDmaSm> sm_{kestSliceDmaSmFactory(config_, status_)};
};

void poll(Run& run) {
  OurMachine machine;
  for (std::string const& name : deviceNames()) machine.deviceIsUp(name);
  for (auto _ : run) machine.poll();
  run.operationsAre(devices);
}

}  // namespace

void measureOurMachine() {
  measureConfiguration<OurMachine>();
  measure("l", "1000 devices", "ours", poll);
}

}  // namespace Kest::Bench
