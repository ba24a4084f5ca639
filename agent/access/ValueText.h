#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "model/DeviceState.h"
#include "platform/bridging/SwitchportMode.h"
#include "platform/hardware/kest/FapType.h"
#include "platform/mox/String8.h"

/// Values as people read them: enumerators without the type's name in front, so that
/// `switchportModeDot1qTunnel` is `dot1qTunnel`.
namespace Kest::Agent {

/// A name as a slice file writes it, without the apostrophes: control characters are escaped.
std::string nameText(Mox::String8 const& name);

/// An enumerator's name without the name of its type, as in `polling` for `smModePolling`.
std::string shortEnumerator(std::string_view typeName, std::string_view enumerator);

std::string valueText(std::uint16_t vlan);
std::string valueText(Bridging::SwitchportMode mode);
std::string valueText(Hardware::Kest::Slice::DeviceState state);
std::string valueText(Hardware::Kest::FapType type);

}  // namespace Kest::Agent
