#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "test/simulation/Event.h"

namespace Simulation {

/// The driver's operations but the dump, in the order of the event `fault`.
enum class Call : std::uint8_t { ifadd, ifdel, nativeVlan, rename, param, down, up, isUp };

/// What happens during a call, beside it.
enum class Effect : std::uint8_t { none, thrown, retry0, retry9, wallForward, wallBack };

struct Answer {
  int result = 0;
  Effect effect = Effect::none;
};

/// What is behind the driver's operations, and how they answer: as a careful driver, but for the
/// faults that are planned. Plain data, so that the real world and the plain one have one each that
/// must stay the same.
class Driver {
 public:
  struct Interface {
    bool exists = false;
    bool lost = false;  // it went by itself
    std::uint16_t vlan = 4096;
    friend bool operator==(Interface const&, Interface const&) = default;
  };
  struct Device {
    bool known = false;
    bool registered = false;
    bool up = false;
    bool left = false;       // how the last operation left it: up or not
    bool forgotten = false;  // it went by itself
    friend bool operator==(Device const&, Device const&) = default;
  };

  Interface const& interface(unsigned key) const { return interfaces_[key]; }
  Device const& device(unsigned key) const { return devices_[key]; }

  // The operations.
  Answer ifadd(unsigned key);
  Answer ifdel(unsigned key);
  Answer nativeVlan(unsigned key, unsigned vlan);
  Answer rename(unsigned key);
  Answer param(unsigned key);
  Answer down(unsigned key);
  Answer up(unsigned key);
  Answer isUp(unsigned key, bool* isUp);

  /// What an event of the driver does.
  void carryOut(Event const& event);
  /// No faults, and everything is again as the operations left it.
  void mend();

  friend bool operator==(Driver const&, Driver const&) = default;

 private:
  /// The next `times` calls of that operation for the key answer so; a result of 0 lets them go
  /// their usual way. Left out when enough are planned.
  void fault(Call call, unsigned key, int times, int result, Effect effect);
  struct Fault {
    Call call{};
    Effect effect{};
    std::uint8_t key = 0;
    std::int16_t times = 0;
    std::int16_t result = 0;
    friend bool operator==(Fault const&, Fault const&) = default;
  };

  /// Answers as planned, or with what `usual()` does.
  template <class Usual>
  Answer answer(Call call, unsigned key, Usual const& usual);

  std::array<Interface, keyCount> interfaces_;
  std::array<Device, keyCount> devices_;
  std::array<Fault, 12> faults_;
  std::size_t faultCount_ = 0;
};

}  // namespace Simulation
