#pragma once

#include <cstdint>
#include <iosfwd>

#include "platform/mox/MoxType.h"
#include "platform/mox/String8.h"

namespace Bridging {

/// How a switch port treats VLAN tags.
enum class SwitchportMode : std::int32_t {
  switchportModeAccess_ = 0,
  switchportModeTrunk_ = 1,
  switchportModeDot1qTunnel_ = 2,
};

/// The enumerator's name; any other number as `SwitchportMode(%d)`.
MOX_API Mox::String8 stringValue(SwitchportMode value);
/// The name in apostrophes.
MOX_API Mox::String8 valueToStrep(SwitchportMode const& value);
MOX_API SwitchportMode sequenceToValue(Mox::String8::IteratorConst& it,
                                       Mox::String8::IteratorConst const& end, SwitchportMode*);
/// The bare name.
MOX_API std::ostream& operator<<(std::ostream& out, SwitchportMode const& value);

}  // namespace Bridging

template <>
struct MOX_API Mox::TypeOf<Bridging::SwitchportMode> {
  static MoxType const* type();
};
