#pragma once

#include <cstdint>
#include <iosfwd>

#include "platform/mox/MoxType.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest {

/// What a state machine is to do beside following its configuration.
enum class SmMode : std::int32_t {
  smModeInitial_ = 0,
  smModeStandby_ = 1,
  smModePolling_ = 2,
};

/// The enumerator's name; any other number as `SmMode(%d)`.
MOX_API Mox::String8 stringValue(SmMode value);
/// The name in apostrophes.
MOX_API Mox::String8 valueToStrep(SmMode const& value);
MOX_API SmMode sequenceToValue(Mox::String8::IteratorConst& it,
                               Mox::String8::IteratorConst const& end, SmMode*);
/// The bare name.
MOX_API std::ostream& operator<<(std::ostream& out, SmMode const& value);

}  // namespace Hardware::Kest

template <>
struct MOX_API Mox::TypeOf<Hardware::Kest::SmMode> {
  static MoxType const* type();
};
