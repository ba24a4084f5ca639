#include "bench/rows/Machine.h"

#include "bench/peers/FlatMachine.h"
#include "bench/rows/Rows.h"
#include "driver/KestDma.h"

namespace Kest::Bench {

namespace {

class TheirMachine {
 public:
  using Record = Port;

  static constexpr char const* name = "flat";

  static Record record(Port const& port) { return port; }
  void put(Record const& record) { machine_.switchPorts.put(record); }
  void vlanPut(std::string const& ifName, std::uint16_t vlan, Bridging::SwitchportMode mode) {
    machine_.nativeVlans.put(ifName, vlan);
    machine_.switchportModes.put(ifName, mode);
  }
  bool isCreated(std::string const& ifName) const {
    return machine_.created.lookup(ifName).created;
  }
  std::uint16_t vlanSet(std::string const& ifName) const {
    return machine_.setVlans.lookup(ifName);
  }

 private:
  FlatMachine machine_;
};

/// The driver call alone, for one device after the other.
void callDriver(Run& run) {
  std::vector<Mox::String8> names;
  for (std::string const& name : deviceNames()) names.emplace_back(name);
  bool down = false;
  for (auto _ : run) {
    for (Mox::String8 const& name : names) {
      bool up = false;
      down = Hardware::Kest::kestDmaIsDeviceUp(name, &up) != 0 || !up || down;
    }
  }
  if (down) run.fail("a device is down");
  run.operationsAre(devices);
}

}  // namespace

void measureTheirMachine() {
  measureConfiguration<TheirMachine>();
  measure("l", "1000 devices", "loop", callDriver);
}

}  // namespace Kest::Bench
