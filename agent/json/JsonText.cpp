#include "agent/json/JsonText.h"

#include <nlohmann/json.hpp>
#include <string>

#include "agent/Text.h"
#include "agent/wire/Protocol.h"
#include "platform/mox/RangeException.h"

namespace Kest::Agent {

namespace {

[[noreturn]] void refuse(std::string const& message) {
  throw Mox::RangeException(Mox::String8(message));
}

/// The parser's own words, without what it puts in front of them. It repeats the token that it does
/// not like, however long that is.
std::string reason(Json::exception const& error) {
  std::string const text = error.what();
  std::size_t const place = text.find("column ");
  std::size_t const start = place == std::string::npos ? text.find("] ") : text.find(": ", place);
  return shortened(text.substr(start + 2));
}

bool checkDepth(int depth, Json::parse_event_t event, Json& /*parsed*/) {
  bool const opens =
      event == Json::parse_event_t::object_start || event == Json::parse_event_t::array_start;
  if (opens && static_cast<std::size_t>(depth) >= Wire::deepestRequest) {
    refuse("expected at most " + std::to_string(Wire::deepestRequest) +
           " nested arrays and objects, found more");
  }
  return true;
}

}  // namespace

Json objectFromText(std::string_view text) {
  // The parser would take it for the end.
  if (std::size_t const zero = text.find('\0'); zero != std::string_view::npos) {
    refuse("expected a JSON object; at byte " + std::to_string(zero + 1) + ": found a zero byte");
  }
  try {
    Json object = Json::parse(text.begin(), text.end(), &checkDepth);
    if (!object.is_object()) refuse(std::string("expected an object, found ") + object.type_name());
    return object;
  } catch (Json::parse_error const& error) {
    refuse("expected a JSON object; at byte " + std::to_string(error.byte) + ": " + reason(error));
  } catch (Json::out_of_range const& error) {
    refuse("expected a JSON object; " + reason(error));
  }
}

}  // namespace Kest::Agent
