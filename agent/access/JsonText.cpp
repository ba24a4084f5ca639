#include "agent/access/JsonText.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "agent/wire/Protocol.h"
#include "platform/mox/RangeException.h"
#include "text/Escapes.h"

namespace Kest::Agent {

namespace {

[[noreturn]] void refuse(std::string const& message) {
  throw Mox::RangeException(Mox::String8(message));
}

/// The parser's message without its prefix, shortened: it quotes the offending token, however long.
std::string reason(Json::exception const& error) {
  std::string_view const text = error.what();
  std::size_t const place = text.find("column ");
  std::size_t const start =
      place == std::string_view::npos ? text.find("] ") : text.find(": ", place);
  return Text::shortened(text.substr(start + 2));
}

bool isPlain(char character) {
  return character >= ' ' && character <= '~' && character != '"' && character != '\\';
}

/// Refuses a text that nests too deep or has too many parts as early as possible: for each new
/// member the parser searches all members of its object.
class Bounds {
 public:
  bool operator()(int depth, Json::parse_event_t event, Json& /*parsed*/) {
    using Event = Json::parse_event_t;
    bool const opens = event == Event::object_start || event == Event::array_start;
    if (opens && static_cast<std::size_t>(depth) >= Wire::deepestRequest) {
      refuse("expected at most " + std::to_string(Wire::deepestRequest) +
             " nested arrays and objects, found more");
    }
    bool const closes = event == Event::object_end || event == Event::array_end;
    if (!closes && ++values_ > Wire::mostRequestValues) {
      refuse("expected at most " + std::to_string(Wire::mostRequestValues) +
             " names and values, found more");
    }
    return true;
  }

 private:
  std::size_t values_ = 0;
};

/// Whether the text keeps the bounds whatever it says: each name and each value takes a byte.
bool keepsBounds(std::string_view text) {
  auto const opens = [](char character) { return character == '{' || character == '['; };
  return text.size() <= Wire::mostRequestValues &&
         std::count_if(text.begin(), text.end(), opens) <=
             static_cast<std::ptrdiff_t>(Wire::deepestRequest);
}

}  // namespace

std::string jsonText(Json const& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json objectFromText(std::string_view text) {
  if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) {
    refuse("expected a JSON object, found nothing");
  }
  // The parser would take a zero byte for the end of the text.
  if (std::size_t const zero = text.find('\0'); zero != std::string_view::npos) {
    refuse("expected a JSON object; at byte " + std::to_string(zero + 1) + ": found a zero byte");
  }
  try {
    Json object = keepsBounds(text) ? Json::parse(text) : Json::parse(text, Bounds());
    if (!object.is_object()) refuse(std::string("expected an object, found ") + object.type_name());
    return object;
  } catch (Json::parse_error const& error) {
    refuse("expected a JSON object; at byte " + std::to_string(error.byte) + ": " + reason(error));
  } catch (Json::out_of_range const& error) {
    refuse("expected a JSON object; " + reason(error));
  }
}

void appendJsonString(std::string& text, std::string_view string) {
  if (std::all_of(string.begin(), string.end(), isPlain)) {
    text.append(1, '"').append(string).append(1, '"');
  } else {
    text += jsonText(string);
  }
}

}  // namespace Kest::Agent
