#pragma once

#include <map>

#include "driver/sim/Entries.h"
#include "driver/sim/Export.h"
#include "driver/sim/Values.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Sim {

/// The slice's chips. A chip is there from the first time that its PCI path is used and never
/// leaves; its name is unique. Results are error numbers; an operation that fails changes nothing,
/// but for a rename, which still makes the chip appear where its path can be one. An operation on a
/// name that no chip has answers ENODEV.
class Devices {
 public:
  static constexpr unsigned maxFaps = 3;

  Devices() = default;
  /// As they were: `devices` is what `all()` once gave.
  KEST_SIM_API explicit Devices(std::map<Mox::String8, Device> devices);

  /// Names the chip at `pciPath`, up or down. EINVAL: the name is empty or too long, or the path
  /// too long or deep (`Names.h`). EEXIST: another chip has that name.
  int rename(Mox::String8 const& devName, Mox::String8 const& pciPath);
  /// Puts `param` in place of what was registered before. EBUSY: the chip is up. EINVAL: `numFaps`
  /// is not 1 to `maxFaps`.
  int param(Mox::String8 const& devName, DeviceParam const& param);
  int down(Mox::String8 const& devName);
  /// EINVAL: the chip has no registered parameters.
  int up(Mox::String8 const& devName);
  int isUp(Mox::String8 const& devName, bool* up) const;
  /// The chip goes up if it was down, and down if it was up, whatever its parameters.
  int flip(Mox::String8 const& devName);

  /// Null when no chip has that name.
  Device const* named(Mox::String8 const& devName) const;
  /// The PCI path of the chip of that name; null when there is none.
  Mox::String8 const* pathOf(Mox::String8 const& devName) const;
  /// Empty when the chip has none, or there is no chip.
  Mox::String8 nameAt(Mox::String8 const& pciPath) const;
  /// By PCI path.
  std::map<Mox::String8, Device> const& all() const noexcept { return devices_.all(); }
  /// See `Entries`.
  Entries<Device>::Changed takeChanged() { return devices_.takeChanged(); }

  bool operator==(Devices const&) const = default;

 private:
  /// Lets `change` work on a copy of the chip, which takes its place if the result is 0.
  template <class Change>
  int change(Mox::String8 const& devName, Change const& change);

  Entries<Device> devices_;
  std::map<Mox::String8, Mox::String8> paths_;  ///< by the chips' names
};

}  // namespace Hardware::Kest::Sim
