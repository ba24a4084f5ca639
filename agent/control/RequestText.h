#pragma once

#include <string_view>

#include "agent/json/GenericJson.h"

namespace Kest::Agent {

/// The request in one line of the control protocol: a JSON object of bounded nesting.
/// `ControlError` of kind request when it is none.
Json readRequest(std::string_view line);

}  // namespace Kest::Agent
