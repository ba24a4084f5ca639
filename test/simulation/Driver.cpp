#include "test/simulation/Driver.h"

namespace Simulation {

namespace {

constexpr int noSuchDevice = 19;
constexpr int busy = 16;
constexpr int invalid = 22;

}  // namespace

Answer Driver::call(Call call, unsigned key, unsigned vlan) {
  for (std::size_t i = 0; i < faultCount_; ++i) {
    Fault& fault = faults_[i];
    if (fault.call != call || fault.key != key) continue;
    Answer const planned{fault.result, fault.effect};
    if (--fault.times == 0) {
      for (std::size_t next = i + 1; next < faultCount_; ++next) faults_[next - 1] = faults_[next];
      faults_[--faultCount_] = Fault();
    }
    if (planned.result != 0) return planned;
    return {carriedOut(call, key, vlan), planned.effect};
  }
  return {carriedOut(call, key, vlan), Effect::none};
}

int Driver::carriedOut(Call call, unsigned key, unsigned vlan) {
  Interface& interface = interfaces_[key];
  Device& device = devices_[key];
  bool const interfaceIsThere = interface.exists && !interface.lost;
  bool const deviceIsThere = device.known && !device.forgotten;
  switch (call) {
    case Call::ifadd:
      if (!interfaceIsThere) interface = Interface{.exists = true};
      return 0;
    case Call::ifdel:
      interface = Interface();
      return interfaceIsThere ? 0 : noSuchDevice;
    case Call::nativeVlan:
      if (!interfaceIsThere) return noSuchDevice;
      interface.vlan = static_cast<std::uint16_t>(vlan);
      return 0;
    case Call::rename:
      device.known = true;
      device.forgotten = false;
      return 0;
    case Call::param:
      if (!deviceIsThere) return noSuchDevice;
      if (device.up) return busy;
      device.registered = true;
      return 0;
    case Call::down:
      if (!deviceIsThere) return noSuchDevice;
      device.up = device.left = false;
      return 0;
    case Call::up:
      if (!device.registered || device.forgotten) return invalid;
      device.up = device.left = true;
      return 0;
    case Call::isUp:
      return deviceIsThere ? 0 : noSuchDevice;
  }
  return invalid;
}

void Driver::carryOut(Event const& event) {
  unsigned const key = event.index(0);
  switch (event.op) {
    case Op::fault:
      return fault(static_cast<Call>(event[0]), event.index(1), event[2], event[3],
                   static_cast<Effect>(event[4]));
    case Op::flip:
      devices_[key].up = !devices_[key].up;
      return;
    case Op::lose:
      interfaces_[key].lost = true;
      return;
    case Op::forget:
      devices_[key].forgotten = true;
      return;
    default:
      return mend();
  }
}

void Driver::fault(Call call, unsigned key, int times, int result, Effect effect) {
  if (faultCount_ == faults_.size()) return;
  faults_[faultCount_++] = {call, effect, static_cast<std::uint8_t>(key),
                            static_cast<std::int16_t>(times), static_cast<std::int16_t>(result)};
}

void Driver::mend() {
  faults_ = {};
  faultCount_ = 0;
  for (Interface& interface : interfaces_) interface.lost = false;
  for (Device& device : devices_) {
    device.forgotten = false;
    device.up = device.left;
  }
}

}  // namespace Simulation
