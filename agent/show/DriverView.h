#pragma once

#include <optional>

#include "agent/access/GenericJson.h"
#include "agent/process/DriverLibrary.h"
#include "platform/mox/String8.h"

namespace Kest::Agent {

/// What the driver knows about ports and devices: each is an object of values, or null if the
/// driver knows nothing. Every driver tells whether a device is up; the simulated one tells
/// everything. The driver is asked each time.
class DriverView {
 public:
  /// The library must outlive this.
  explicit DriverView(DriverLibrary const& driver);

  /// Whether the driver tells of interfaces and of devices' parameters.
  bool tellsAll() const noexcept { return simulated_; }
  /// The name of the interface after that one in the driver's order; the first if `ifName` is
  /// empty; nothing at the end.
  std::optional<Mox::String8> nextInterface(Mox::String8 const& ifName) const;
  /// Null when there is none of that name.
  Json interface(Mox::String8 const& ifName) const;
  /// Null when there is none of that name. Has `up`, or `error` with the driver's error number;
  /// besides, the parameters that the simulated driver knows.
  Json device(Mox::String8 const& devName) const;

 private:
  Json parameters(Mox::String8 const& devName) const;

  DriverLibrary const& driver_;
  bool simulated_;
};

}  // namespace Kest::Agent
