#include "agent/control/RequestText.h"

#include <nlohmann/json.hpp>

#include "agent/byname/ControlError.h"
#include "agent/json/JsonText.h"
#include "platform/mox/RangeException.h"

namespace Kest::Agent {

Json readRequest(std::string_view line) {
  try {
    return objectFromText(line);
  } catch (Mox::RangeException const& refused) {
    throw ControlError(Wire::ErrorKind::request, refused.what());
  }
}

}  // namespace Kest::Agent
