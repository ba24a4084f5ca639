#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "agent/access/GenericJson.h"

/// The parts of a request that all verbs share. Malformed ones are refused with a `ControlError` of
/// kind request.
namespace Kest::Agent {

/// The request in one line of the control protocol: a JSON object of bounded nesting and size.
Json readRequest(std::string_view line);

/// The JSON text of its id; empty when it has none.
std::string idText(Json const& request);

/// How many bytes follow the line.
std::uint64_t announcedBytes(Json const& request);

}  // namespace Kest::Agent
