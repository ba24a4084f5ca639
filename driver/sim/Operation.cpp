#include "driver/sim/Operation.h"

#include <algorithm>
#include <iterator>
#include <ostream>

namespace Hardware::Kest::Sim {

namespace {

constexpr std::string_view operationNames[] = {
    "kestDmaIfadd",        "kestDmaIfdel",       "kestDmaNativeVlan",
    "kestDmaDeviceRename", "kestDmaDeviceParam", "kestDmaDeviceDown",
    "kestDmaDeviceUp",     "kestDmaIsDeviceUp",  "kestDmaDump",
};
static_assert(std::size(operationNames) == static_cast<std::size_t>(Operation::dump) + 1);

}  // namespace

std::optional<Operation> operationNamed(std::string_view name) {
  auto const* const at = std::find(std::begin(operationNames), std::end(operationNames), name);
  if (at == std::end(operationNames)) return std::nullopt;
  return static_cast<Operation>(at - std::begin(operationNames));
}

std::ostream& operator<<(std::ostream& out, Operation operation) {
  return out << operationNames[static_cast<std::size_t>(operation)];
}

}  // namespace Hardware::Kest::Sim
