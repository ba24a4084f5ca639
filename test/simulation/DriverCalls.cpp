#include "test/simulation/DriverCalls.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "test/simulation/Values.h"
#include "test/support/DriverLine.h"

namespace Simulation {

namespace {

DriverCalls* currentCalls = nullptr;

constexpr std::string_view operations[] = {
    "kestDmaIfadd",       "kestDmaIfdel",      "kestDmaNativeVlan", "kestDmaDeviceRename",
    "kestDmaDeviceParam", "kestDmaDeviceDown", "kestDmaDeviceUp",   "kestDmaIsDeviceUp"};

/// The number of the name. The library has no other names than these.
unsigned known(unsigned collection, Mox::String8 const& name) {
  unsigned const key = keyOf(collection, name);
  if (key == keyCount) std::abort();
  return key;
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

int DriverCalls::called(char const* operation, Mox::String8 const& name, std::string line,
                        unsigned vlan) {
  add(std::move(line));
  auto const call = static_cast<Call>(std::ranges::find(operations, operation) - operations);
  unsigned const key = known(call < Call::rename ? switchPorts : devices, name);
  Answer const answer = driver_.call(call, key, vlan);
  if (answer.effect != Effect::none) apply_(answer.effect);
  return answer.result;
}

bool DriverCalls::isUp(Mox::String8 const& devName) const {
  return driver_.device(known(devices, devName)).up;
}

}  // namespace Simulation

namespace Hardware::Kest {

namespace {

using Simulation::DriverCalls;

/// The simulation knows values by their numbers.
int numbered(FapType type) {
  return static_cast<int>(type);
}
auto const& numbered(auto const& argument) {
  return argument;
}

int driven(char const* operation, auto*, auto const& name, auto const&... others) {
  return DriverCalls::current().called(
      operation, name, Support::driverLine(operation, name, numbered(others)...), 0);
}

int driven(char const* operation, auto*, char const* ifName, bool mode, unsigned short vlan) {
  return DriverCalls::current().called(operation, ifName,
                                       Support::driverLine(operation, ifName, mode, vlan), vlan);
}

/// Tells whether the device is up even where the answer says that this means nothing.
int driven(char const* operation, auto* address, Mox::String8 const& devName, bool* up) {
  *up = DriverCalls::current().isUp(devName);
  return driven(operation, address, devName);
}

int driven(char const* operation, auto*) {
  DriverCalls::current().add(std::string(operation) + "()");
  return 0;
}

}  // namespace

}  // namespace Hardware::Kest

#include "test/support/DriverOperations.h"
