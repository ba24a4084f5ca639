#pragma once

#include "driver/KestDma.h"

namespace Kest::Agent {

/// The loaded driver's definition of an operation of driver/KestDma.h, null before a driver is
/// loaded. `DriverLibrary` sets all nine.
template <auto operation>
inline decltype(operation) inDriver = nullptr;

}  // namespace Kest::Agent
