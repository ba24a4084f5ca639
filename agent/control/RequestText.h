#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "agent/access/GenericJson.h"

/// What of a request is not its verb's affair. A `ControlError` of kind request refuses what is not
/// as it must be.
namespace Kest::Agent {

/// The request in one line of the control protocol: a JSON object of bounded nesting and size.
Json readRequest(std::string_view line);

/// The JSON text of its id; empty when it has none.
std::string idText(Json const& request);

/// How many bytes follow the line.
std::uint64_t announcedBytes(Json const& request);

}  // namespace Kest::Agent
