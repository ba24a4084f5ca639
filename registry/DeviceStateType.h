#pragma once

#include "model/DeviceState.h"
#include "model/Export.h"
#include "platform/mox/GenericEnum.h"

namespace Hardware::Kest::Slice {

/// The type object of `DeviceState`, which as an enumeration cannot name it itself.
KEST_SLICE_DMA_API Mox::MoxType const* deviceStateType();

}  // namespace Hardware::Kest::Slice

template <>
struct Mox::TypeOf<Hardware::Kest::Slice::DeviceState> {
  static MoxType const* type() { return Hardware::Kest::Slice::deviceStateType(); }
};
