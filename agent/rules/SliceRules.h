#pragma once

#include <cstdint>
#include <string_view>

#include "model/DeviceState.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Strep.h"
#include "platform/mox/String8.h"
#include "registry/DeviceStateType.h"

/// The rules of the state machine for configured values. The configuration entity takes any value,
/// but announcing one that breaks a rule ends the process. So slice files and single changes that
/// hold one are refused. Each check throws `Mox::RangeException`.
namespace Kest::Agent {

inline void checkKey(std::string_view keyName, Mox::String8 const& key) {
  if (keyName == "ifName" && key.pos("et") == Mox::String8::npos) {
    Mox::throwRangeException(Mox::format("expected an interface name with 'et' in it, found %s",
                                         Mox::valueToStrep(key).charPtr()));
  }
  // The driver takes names as C strings: it would cut the name off there.
  if (keyName == "ifName" && key.view().find('\0') != std::string_view::npos) {
    Mox::throwRangeException(Mox::format("expected an interface name without NUL, found %s",
                                         Mox::valueToStrep(key).charPtr()));
  }
  if (key.empty()) Mox::throwRangeException("expected a device name, found an empty one");
}

constexpr std::uint16_t largestVlan = 4094;

inline void checkValue(std::uint16_t vlan) {
  if (vlan > largestVlan) {
    Mox::throwRangeException(
        Mox::format("expected a VLAN id from 1 to %d, or 0 for none, found %d", largestVlan, vlan));
  }
}

/// Accepts the names of the states that a device can be brought to.
inline void checkStateName(Mox::String8 const& name) {
  using Hardware::Kest::Slice::DeviceState;
  Mox::String8 const up = stringValue(DeviceState::deviceStateUp_);
  Mox::String8 const down = stringValue(DeviceState::deviceStateDown_);
  if (name == up || name == down) return;
  Mox::throwRangeException(Mox::format("expected '%s' or '%s', found %s", up.charPtr(),
                                       down.charPtr(), Mox::valueToStrep(name).charPtr()));
}

/// Checks the value of an entry or of a field. The driver judges values of other types.
inline void checkValue(Mox::GenericIf const& value) {
  using Hardware::Kest::Slice::DeviceState;
  if (auto const* const vlan = Mox::genericVal<std::uint16_t>(&value)) checkValue(*vlan);
  if (auto const* const state = Mox::genericVal<DeviceState>(&value)) {
    checkStateName(stringValue(*state));
  }
}

}  // namespace Kest::Agent
