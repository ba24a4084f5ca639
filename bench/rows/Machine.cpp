#include "bench/Operations.h"
#include "bench/Ours.h"
#include "bench/peers/FlatMachine.h"
#include "bench/rows/Rows.h"
#include "driver/KestDma.h"
#include "sm/KestSliceDmaSm.h"

/// Rows j and l: what the state machine adds to its driver, which does nothing here.
namespace Kest::Bench {

namespace {

using Hardware::Kest::Slice::DeviceState;
using Hardware::Kest::Slice::KestSliceDmaConfig;
using Hardware::Kest::Slice::KestSliceDmaSm;
using Hardware::Kest::Slice::KestSliceDmaStatus;

constexpr std::size_t devices = 1000;

/// Of every three ports one has no native VLAN, one has one, one tunnels.
std::uint16_t vlanOf(std::size_t number) {
  return static_cast<std::uint16_t>(number % 3 == 0 ? 0 : 1 + number % 4094);
}

Bridging::SwitchportMode modeOf(std::size_t number) {
  return number % 3 == 1 ? Bridging::SwitchportMode::switchportModeAccess_
                         : Bridging::SwitchportMode::switchportModeDot1qTunnel_;
}

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

template <class Machine>
void expectDone(benchmark::State& state, Machine const& machine, std::vector<Port> const& ports) {
  for (std::size_t i = 0; i < ports.size(); ++i) {
    std::string const& ifName = ports[i].ifName;
    if (!machine.isCreated(ifName) || machine.vlanSet(ifName) != vlanOf(i)) {
      state.SkipWithError("a port is not as it was configured");
    }
  }
}

/// A change of a port's configuration, to the status that says what the driver did.
template <class Machine>
void changeConfiguration(benchmark::State& state, Shape shape) {
  Machine machine;
  auto const ports = portsOf(shape);
  for (std::size_t i = 0; i < ports.size(); ++i) {
    if (vlanOf(i) > 0) machine.vlanPut(ports[i].ifName, vlanOf(i), modeOf(i));
    machine.put(Machine::record(ports[i]));
  }
  auto const* to = &visitedChangedRecords<Machine>(shape);
  auto const* from = &visitedRecords<Machine>(shape);
  std::size_t at = 0;
  for (auto _ : state) {
    machine.put((*to)[at]);
    if (++at == to->size()) {
      at = 0;
      std::swap(to, from);
    }
  }
  expectDone(state, machine, ports);
}

std::vector<std::string> deviceNames() {
  std::vector<std::string> names;
  for (Port const& port : portsOf({devices, 11})) names.push_back(port.devName);
  return names;
}

void poll(benchmark::State& state) {
  OurMachine machine;
  for (std::string const& name : deviceNames()) machine.deviceIsUp(name);
  for (auto _ : state) machine.poll();
  operationsAre(state, devices);
}

/// The driver call alone, for one device after the other.
void callDriver(benchmark::State& state) {
  std::vector<Mox::String8> names;
  for (std::string const& name : deviceNames()) names.emplace_back(name);
  for (auto _ : state) {
    for (Mox::String8 const& name : names) {
      bool up = false;
      if (Hardware::Kest::kestDmaIsDeviceUp(name, &up) != 0 || !up) {
        state.SkipWithError("a device is down");
      }
    }
  }
  operationsAre(state, devices);
}

}  // namespace

void measureMachine() {
  for (Shape const shape : {shortNames, longNames}) {
    Among<OurMachine, TheirMachine>::each([&]<class Machine> {
      measure("j", shape.text(), Machine::name,
              [=](benchmark::State& state) { changeConfiguration<Machine>(state, shape); });
    });
  }
  measure("l", "1000 devices", "ours", poll);
  measure("l", "1000 devices", "loop", callDriver);
}

}  // namespace Kest::Bench
