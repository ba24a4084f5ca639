#pragma once

#include <iosfwd>
#include <optional>
#include <string_view>

#include "driver/sim/Export.h"

namespace Hardware::Kest::Sim {

/// The driver's operations, in the order of `driver/KestDma.h`.
enum class Operation {
  ifadd,
  ifdel,
  nativeVlan,
  deviceRename,
  deviceParam,
  deviceDown,
  deviceUp,
  isDeviceUp,
  dump,
};

/// The operation of that function name, such as `kestDmaIfadd`.
std::optional<Operation> operationNamed(std::string_view name);
inline bool hasResult(Operation operation) {
  return operation != Operation::dump;
}

/// The function's name.
KEST_SIM_API std::ostream& operator<<(std::ostream& out, Operation operation);

}  // namespace Hardware::Kest::Sim
