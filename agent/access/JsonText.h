#pragma once

#include <string_view>

#include "agent/access/GenericJson.h"

namespace Kest::Agent {

/// The JSON object that a text of whatever origin is. `Mox::RangeException` "expected ..., found
/// ..." when it is none, nests deeper than `Wire::deepestRequest`, as what works through JSON goes
/// down as deep as it does, or has more than `Wire::mostRequestValues` names and values.
Json objectFromText(std::string_view text);

}  // namespace Kest::Agent
