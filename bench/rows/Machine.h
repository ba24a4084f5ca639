#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "bench/Operations.h"
#include "platform/bridging/SwitchportMode.h"

/// Rows j and l: what the state machine adds to its driver, which does nothing here.
namespace Kest::Bench {

inline constexpr std::size_t devices = 1000;

inline std::vector<std::string> deviceNames() {
  std::vector<std::string> names;
  for (Port const& port : portsOf({devices, 11})) names.push_back(port.devName);
  return names;
}

/// Of every three ports one has no native VLAN, one has one, one tunnels.
inline std::uint16_t vlanOf(std::size_t number) {
  return static_cast<std::uint16_t>(number % 3 == 0 ? 0 : 1 + number % 4094);
}

inline Bridging::SwitchportMode modeOf(std::size_t number) {
  return number % 3 == 1 ? Bridging::SwitchportMode::switchportModeAccess_
                         : Bridging::SwitchportMode::switchportModeDot1qTunnel_;
}

template <class Machine>
void expectDone(Run& run, Machine const& machine, std::vector<Port> const& ports) {
  for (std::size_t i = 0; i < ports.size(); ++i) {
    std::string const& ifName = ports[i].ifName;
    if (!machine.isCreated(ifName) || machine.vlanSet(ifName) != vlanOf(i)) {
      run.fail("a port is not as it was configured");
    }
  }
}

/// A change of a port's configuration, to the status that says what the driver did.
template <class Machine>
void changeConfiguration(Run& run, Shape shape) {
  Machine machine;
  auto const ports = portsOf(shape);
  for (std::size_t i = 0; i < ports.size(); ++i) {
    if (vlanOf(i) > 0) machine.vlanPut(ports[i].ifName, vlanOf(i), modeOf(i));
    machine.put(Machine::record(ports[i]));
  }
  auto const* to = &visitedChangedRecords<Machine>(shape);
  auto const* from = &visitedRecords<Machine>(shape);
  std::size_t at = 0;
  for (auto _ : run) {
    machine.put((*to)[at]);
    if (++at == to->size()) {
      at = 0;
      std::swap(to, from);
    }
  }
  expectDone(run, machine, ports);
}

template <class Machine>
void measureConfiguration() {
  for (Shape const shape : {shortNames, longNames}) {
    measure("j", shape.text(), Machine::name,
            [=](Run& run) { changeConfiguration<Machine>(run, shape); });
  }
}

}  // namespace Kest::Bench
