#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "test/simulation/Event.h"

namespace Simulation {

/// The driver's operations without the dump, in the order of the event `fault`: those of
/// interfaces first.
enum class Call : std::uint8_t { ifadd, ifdel, nativeVlan, rename, param, down, up, isUp };

/// What happens during a call, besides its answer.
enum class Effect : std::uint8_t { none, thrown, retry0, retry9, wallForward, wallBack };

struct Answer {
  int result = 0;
  Effect effect = Effect::none;
};

/// The state of a careful driver, and how its operations answer unless faults are planned. Plain
/// data: the real world and the plain one have one each, and the two must stay the same.
class Driver {
 public:
  struct Interface {
    bool exists = false;
    bool lost = false;  // it vanished by itself
    std::uint16_t vlan = 4096;
    friend bool operator==(Interface const&, Interface const&) = default;
  };
  struct Device {
    bool known = false;
    bool registered = false;
    bool up = false;
    bool left = false;       // up or not after the last operation
    bool forgotten = false;  // it vanished by itself
    friend bool operator==(Device const&, Device const&) = default;
  };

  Interface const& interface(unsigned key) const { return interfaces_[key]; }
  Device const& device(unsigned key) const { return devices_[key]; }

  /// The answer of that operation. Only `nativeVlan` has a VLAN.
  Answer call(Call call, unsigned key, unsigned vlan = 0);

  /// Carries out an event of the driver.
  void carryOut(Event const& event);
  /// Forgets the faults and puts everything back to how the operations left it.
  void mend();

  friend bool operator==(Driver const&, Driver const&) = default;

 private:
  /// The next `times` calls of that operation for the key answer `result`; with 0 they answer as
  /// usual. Ignored when enough faults are planned.
  void fault(Call call, unsigned key, int times, int result, Effect effect);
  struct Fault {
    Call call{};
    Effect effect{};
    std::uint8_t key = 0;
    std::int16_t times = 0;
    std::int16_t result = 0;
    friend bool operator==(Fault const&, Fault const&) = default;
  };

  /// Carries the operation out as if no fault were planned; returns its answer.
  int carriedOut(Call call, unsigned key, unsigned vlan);

  std::array<Interface, keyCount> interfaces_;
  std::array<Device, keyCount> devices_;
  std::array<Fault, 12> faults_;
  std::size_t faultCount_ = 0;
};

}  // namespace Simulation
