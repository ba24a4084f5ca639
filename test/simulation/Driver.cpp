#include "test/simulation/Driver.h"

namespace Simulation {

namespace {

constexpr int noSuchDevice = 19;
constexpr int busy = 16;
constexpr int invalid = 22;

}  // namespace

template <class Usual>
Answer Driver::answer(Call call, unsigned key, Usual const& usual) {
  for (std::size_t i = 0; i < faultCount_; ++i) {
    Fault& fault = faults_[i];
    if (fault.call != call || fault.key != key) continue;
    Answer const planned{fault.result, fault.effect};
    if (--fault.times == 0) {
      for (std::size_t next = i + 1; next < faultCount_; ++next) faults_[next - 1] = faults_[next];
      faults_[--faultCount_] = Fault();
    }
    return {planned.result == 0 ? usual() : planned.result, planned.effect};
  }
  return {usual(), Effect::none};
}

Answer Driver::ifadd(unsigned key) {
  return answer(Call::ifadd, key, [&] {
    Interface& interface = interfaces_[key];
    if (!interface.exists || interface.lost) interface = Interface{.exists = true};
    return 0;
  });
}

Answer Driver::ifdel(unsigned key) {
  return answer(Call::ifdel, key, [&] {
    bool const existed = interfaces_[key].exists && !interfaces_[key].lost;
    interfaces_[key] = Interface();
    return existed ? 0 : noSuchDevice;
  });
}

Answer Driver::nativeVlan(unsigned key, unsigned vlan) {
  return answer(Call::nativeVlan, key, [&] {
    Interface& interface = interfaces_[key];
    if (!interface.exists || interface.lost) return noSuchDevice;
    interface.vlan = static_cast<std::uint16_t>(vlan);
    return 0;
  });
}

Answer Driver::rename(unsigned key) {
  return answer(Call::rename, key, [&] {
    devices_[key].known = true;
    devices_[key].forgotten = false;
    return 0;
  });
}

Answer Driver::param(unsigned key) {
  return answer(Call::param, key, [&] {
    Device& device = devices_[key];
    if (!device.known || device.forgotten) return noSuchDevice;
    if (device.up) return busy;
    device.registered = true;
    return 0;
  });
}

Answer Driver::down(unsigned key) {
  return answer(Call::down, key, [&] {
    Device& device = devices_[key];
    if (!device.known || device.forgotten) return noSuchDevice;
    device.up = device.left = false;
    return 0;
  });
}

Answer Driver::up(unsigned key) {
  return answer(Call::up, key, [&] {
    Device& device = devices_[key];
    if (!device.registered || device.forgotten) return invalid;
    device.up = device.left = true;
    return 0;
  });
}

Answer Driver::isUp(unsigned key, bool* isUp) {
  *isUp = devices_[key].up;  // also where the answer says that this means nothing
  return answer(Call::isUp, key, [&] {
    bool const known = devices_[key].known && !devices_[key].forgotten;
    return known ? 0 : noSuchDevice;
  });
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
