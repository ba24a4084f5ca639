#include "driver/sim/Operation.h"

#include <algorithm>
#include <iterator>
#include <ostream>

namespace Hardware::Kest::Sim {

namespace {

constexpr std::string_view names[] = {
    "kestDmaIfadd",        "kestDmaIfdel",       "kestDmaNativeVlan",
    "kestDmaDeviceRename", "kestDmaDeviceParam", "kestDmaDeviceDown",
    "kestDmaDeviceUp",     "kestDmaIsDeviceUp",  "kestDmaDump",
};
static_assert(std::size(names) == static_cast<std::size_t>(Operation::dump) + 1);

}  // namespace

std::optional<Operation> operationNamed(std::string_view name) {
  auto const* const at = std::find(std::begin(names), std::end(names), name);
  if (at == std::end(names)) return std::nullopt;
  return static_cast<Operation>(at - std::begin(names));
}

std::ostream& operator<<(std::ostream& out, Operation operation) {
  return out << names[static_cast<std::size_t>(operation)];
}

}  // namespace Hardware::Kest::Sim
