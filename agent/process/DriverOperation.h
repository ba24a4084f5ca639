#pragma once

#include "driver/KestDma.h"

namespace Kest::Agent {

/// What the driver that was loaded last has for an operation of driver/KestDma.h, which is named by
/// its declaration; null before. `DriverLibrary` fills all nine in.
template <auto operation>
inline decltype(operation) inDriver = nullptr;

}  // namespace Kest::Agent
