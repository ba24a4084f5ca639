#pragma once

#include <cstdint>
#include <iosfwd>

#include "model/Export.h"
#include "platform/mox/Strep.h"

namespace Hardware::Kest::Slice {

/// Whether a device is, or is to be, up. The default is unknown.
enum class DeviceState : std::int32_t {
  deviceStateUnknown_ = 0,
  deviceStateUp_ = 1,
  deviceStateDown_ = 2,
};

/// The enumerator's name, without the underscore; any other number as "DeviceState(%d)".
KEST_SLICE_DMA_API Mox::String8 stringValue(DeviceState value);

/// `Mox::RangeException` "DeviceState" for a number or a name that no enumerator has.
KEST_SLICE_DMA_API DeviceState DeviceStateInstance(unsigned int number);
KEST_SLICE_DMA_API DeviceState DeviceStateInstance(Mox::String8 const& name);

/// The text form: the name in apostrophes.
KEST_SLICE_DMA_API Mox::String8 valueToStrep(DeviceState const& value);
KEST_SLICE_DMA_API DeviceState sequenceToValue(Mox::String8::IteratorConst& it,
                                               Mox::String8::IteratorConst const& end,
                                               DeviceState*);

/// Writes the bare name.
KEST_SLICE_DMA_API std::ostream& operator<<(std::ostream& out, DeviceState const& value);

}  // namespace Hardware::Kest::Slice
