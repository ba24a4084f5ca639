#pragma once

#include <map>
#include <utility>

#include "driver/sim/Entries.h"
#include "driver/sim/Values.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Sim {

class Devices;

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
