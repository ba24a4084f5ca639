#pragma once

#include <optional>

#include "agent/access/GenericJson.h"
#include "agent/process/DriverLibrary.h"
#include "platform/mox/String8.h"

namespace Kest::Agent {

/// What the driver knows of ports and devices, each an object of values or null where it knows
/// nothing. Every driver tells whether a device is up; the simulated one tells everything. It is
/// asked each time.
class DriverView {
 public:
  /// The library must outlive this.
  explicit DriverView(DriverLibrary const& driver);

  /// Whether the driver tells of interfaces, and of devices' parameters, at all.
  bool tellsAll() const noexcept { return simulated_; }
  /// The name of the interface that comes after that one in the driver's order, or the first after
  /// an empty name; nothing at the end.
  std::optional<Mox::String8> nextInterface(Mox::String8 const& ifName) const;
  /// Null when there is none of that name.
  Json interface(Mox::String8 const& ifName) const;
  /// Null when there is none of that name. `up`, besides what the simulated driver knows of
  /// parameters; or `error`, the number that it answers otherwise.
  Json device(Mox::String8 const& devName) const;

 private:
  Json parameters(Mox::String8 const& devName) const;

  DriverLibrary const& driver_;
  bool simulated_;
};

}  // namespace Kest::Agent
