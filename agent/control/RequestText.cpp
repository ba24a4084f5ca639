#include "agent/control/RequestText.h"

#include <nlohmann/json.hpp>

#include "agent/access/ControlError.h"
#include "agent/access/JsonText.h"
#include "platform/mox/RangeException.h"

namespace Kest::Agent {

using Wire::ErrorKind;

Json readRequest(std::string_view line) {
  try {
    return objectFromText(line);
  } catch (Mox::RangeException const& refused) {
    throw ControlError(ErrorKind::request, refused.what());
  }
}

std::string idText(Json const& request) {
  auto const id = request.find("id");
  if (id == request.end()) return "";
  std::string text = id->dump();
  if (text.size() <= Wire::longestId) return text;
  throw ControlError(ErrorKind::request, "expected an 'id' of at most " +
                                             std::to_string(Wire::longestId) +
                                             " bytes, found a longer one");
}

std::uint64_t announcedBytes(Json const& request) {
  auto const bytes = request.find("bytes");
  if (bytes == request.end()) return 0;
  if (bytes->is_number_unsigned()) return bytes->get<std::uint64_t>();
  throw ControlError(ErrorKind::request, std::string("expected a number of bytes as 'bytes', ") +
                                             "found " + bytes->type_name());
}

}  // namespace Kest::Agent
