#pragma once

#include <cstdint>
#include <iosfwd>

#include "platform/mox/MoxType.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest {

/// Type of a packet-processor (FAP) chip.
enum class FapType : std::int32_t {
  fapTypeUnknown_ = 0,
  fapTypeArad_ = 1,
  fapTypeAradDual_ = 2,
};

/// The enumerator's name; any other number as `FapType(%d)`.
MOX_API Mox::String8 stringValue(FapType value);
/// The name in apostrophes.
MOX_API Mox::String8 valueToStrep(FapType const& value);
MOX_API FapType sequenceToValue(Mox::String8::IteratorConst& it,
                                Mox::String8::IteratorConst const& end, FapType*);
/// The bare name.
MOX_API std::ostream& operator<<(std::ostream& out, FapType const& value);

}  // namespace Hardware::Kest

template <>
struct MOX_API Mox::TypeOf<Hardware::Kest::FapType> {
  static MoxType const* type();
};
