#include "test/simulation/Probes.h"

#include <algorithm>

namespace Simulation {

std::size_t Probes::reached() const {
  auto const never = std::count(counts_.begin(), counts_.end(), 0U);
  return probeCount - static_cast<std::size_t>(never);
}

std::string_view Probes::name(std::size_t probe) {
  std::string_view names = probeNames;
  for (; probe > 0; --probe) names.remove_prefix(names.find(',') + 2);
  return names.substr(0, names.find(','));
}

}  // namespace Simulation
