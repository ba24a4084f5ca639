#pragma once

#include <map>
#include <optional>
#include <string>

#include "agent/DriverLibrary.h"
#include "agent/json/GenericJson.h"
#include "platform/mox/String8.h"

namespace Kest::Agent {

/// What the driver knows of ports and devices, each an object of values or null where it knows
/// nothing. Every driver tells whether a device is up; the simulated one tells everything.
class DriverView {
 public:
  explicit DriverView(DriverLibrary const& driver);

  /// Whether the driver tells of interfaces at all.
  bool hasInterfaces() const noexcept { return simulated_; }
  std::map<Mox::String8, Json> const& interfaces() const noexcept { return interfaces_; }
  /// Null when there is none of that name.
  Json interface(Mox::String8 const& ifName) const;
  /// Asks the driver; null when there is none of that name. `up`, besides what the simulated driver
  /// knows of parameters; or `error`, the number that it answers otherwise.
  Json device(Mox::String8 const& devName) const;

 private:
  DriverLibrary const& driver_;
  bool simulated_;
  std::map<Mox::String8, Json> interfaces_;
  std::map<Mox::String8, Json> devices_;
};

}  // namespace Kest::Agent
