#pragma once

#include <algorithm>
#include <string>

#include "test/model/RecordNames.h"
#include "test/simulation/Values.h"

/// Makes real values from the numbers of `Values.h`, and numbers from values.
namespace Simulation {

using Hardware::Kest::Slice::ConfigDevice;
using Hardware::Kest::Slice::ConfigSwitchPort;
using Hardware::Kest::Slice::DeviceState;
using Hardware::Kest::Slice::KestSliceDmaConfig;
using Hardware::Kest::Slice::KestSliceDmaStatus;
using Hardware::Kest::Slice::StatusDevice;
using Hardware::Kest::Slice::StatusSwitchPort;

/// Handles by number, made anew for each run.
using Handles = std::array<Mox::Ptr<Fru::PciHam const>, 2>;

void makeValue(ConfigSwitchPort& port, Mox::String8 const& key, std::int32_t number,
               Handles const& handles);
void makeValue(ConfigDevice& device, Mox::String8 const& key, std::int32_t number,
               Handles const& handles);
inline void makeValue(StatusSwitchPort& port, Mox::String8 const& key, std::int32_t number,
                      Handles const&) {
  port.ifNameIs(key);
  port.createdIs(number != 0);
}
inline void makeValue(StatusDevice& device, Mox::String8 const& key, std::int32_t number,
                      Handles const&) {
  device.devNameIs(key);
  device.registeredIs(number != 0);
}
/// For values that do not hold their key.
template <class Value>
void makeValue(Value& value, Mox::String8 const&, std::int32_t number, Handles const&) {
  value = static_cast<Value>(number);
}

inline std::int32_t numberOf(ConfigSwitchPort const& port) {
  for (std::int32_t row = 0; row < 8; ++row) {
    if (portRow(row).destId == port.destId()) return row;
  }
  return -1;
}
inline std::int32_t numberOf(ConfigDevice const& device) {
  for (std::int32_t row = 0; row < 8; ++row) {
    if (deviceRow(row).firstPort == device.cpuTmSysPort()) return row;
  }
  return -1;
}
inline std::int32_t numberOf(StatusSwitchPort const& port) {
  return port.created() ? 1 : 0;
}
inline std::int32_t numberOf(StatusDevice const& device) {
  return device.registered() ? 1 : 0;
}
template <class Value>
std::int32_t numberOf(Value const& value) {
  return static_cast<std::int32_t>(value);
}

/// The text of a value that an operation returned; a record's with its key.
inline std::string valueText(auto const& value) {
  if constexpr (requires { value.ifName(); }) {
    return text("'", value.ifName().view(), "' ", numberOf(value));
  } else if constexpr (requires { value.devName(); }) {
    return text("'", value.devName().view(), "' ", numberOf(value));
  } else {
    return text(numberOf(value));
  }
}

}  // namespace Simulation
