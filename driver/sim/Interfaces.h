#pragma once

#include <iosfwd>
#include <map>
#include <utility>

#include "driver/KestDma.h"
#include "driver/sim/Entries.h"
#include "driver/sim/Export.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Sim {

class Devices;

/// What `kestDmaIfadd` asks for, in its order.
struct InterfaceParam {
  int destId = 0;
  int shadowIntfId = -1;  ///< -1: none
  int trafficClass = 0;
  Mox::String8 devName;  ///< may be empty
  int fapNum = 0;
  bool ctrl = false;
  bool hwLag = false;
  Mox::String8 macAddr;  ///< as text

  bool operator==(InterfaceParam const&) const = default;
};

/// One kernel network interface.
struct Interface {
  static constexpr unsigned short lastVlan = 4094;
  static constexpr unsigned short noVlan = noVlanOrInterface;
  static constexpr bool isNativeVlan(unsigned short vlanId) {
    return (vlanId >= 1 && vlanId <= lastVlan) || vlanId == noVlan;
  }

  InterfaceParam param;
  unsigned short nativeVlan = noVlan;
  bool mode = false;  ///< the flag that the native VLAN was set with

  bool operator==(Interface const&) const = default;
};

KEST_SIM_API std::ostream& operator<<(std::ostream& out, InterfaceParam const& param);
KEST_SIM_API std::ostream& operator<<(std::ostream& out, Interface const& interface);

/// The slice's interfaces by name. Results are error numbers; an operation that fails changes
/// nothing. An operation on an interface that does not exist answers ENODEV.
class Interfaces {
 public:
  Interfaces() = default;
  /// As they were: `interfaces` is what `all()` once gave.
  explicit Interfaces(std::map<Mox::String8, Interface> interfaces) noexcept
      : interfaces_(std::move(interfaces)) {}

  /// Makes the interface, or gives an existing one new parameters and leaves its native VLAN.
  /// EINVAL: the name is empty or too long (`Names.h`), the MAC address malformed, or the device
  /// has no FAP of that number. ENODEV: no device has that name. Without a device `fapNum` means
  /// nothing; on a device whose parameters are not registered yet it is held against the most FAPs
  /// that a device can have.
  int add(Mox::String8 const& ifName, InterfaceParam const& param, Devices const& devices);
  int del(Mox::String8 const& ifName);
  /// EINVAL: the VLAN is neither 1 to 4094 nor `noVlan`, which clears VLAN and mode.
  int nativeVlan(Mox::String8 const& ifName, bool mode, unsigned short vlanId);
  /// The interfaces that a device carries stay with it when its name changes.
  void deviceRenamed(Mox::String8 const& from, Mox::String8 const& to);

  std::map<Mox::String8, Interface> const& all() const noexcept { return interfaces_.all(); }
  /// See `Entries`.
  Entries<Interface>::Changed takeChanged() { return interfaces_.takeChanged(); }

  bool operator==(Interfaces const&) const = default;

 private:
  Entries<Interface> interfaces_;
};

}  // namespace Hardware::Kest::Sim
