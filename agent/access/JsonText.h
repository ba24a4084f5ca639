#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace Kest::Agent {

/// Members stay in the order in which they came.
using Json = nlohmann::ordered_json;

/// JSON on one line; bytes that are no UTF-8 become U+FFFD.
std::string jsonText(Json const& json);

/// Parses a JSON object from an untrusted text.
/// @throw Mox::RangeException "expected ..., found ..." when it is not an object, nests deeper than
/// `Wire::deepestRequest` (JSON is processed recursively), or has more than
/// `Wire::mostRequestValues` names and values
Json objectFromText(std::string_view text);

/// Appends a string as `jsonText` has it.
void appendJsonString(std::string& text, std::string_view string);

}  // namespace Kest::Agent
