#include <simdjson.h>

#include <charconv>
#include <stdexcept>

#include "bench/peers/Texts.h"

namespace Kest::Bench {

namespace {

/// Reads "00:1c:73:0a:0b:0c"; `std::invalid_argument` otherwise.
std::array<std::uint8_t, 6> macAddrOf(std::string_view text) {
  std::array<std::uint8_t, 6> octets{};
  if (text.size() != 17) throw std::invalid_argument("no MAC address");
  for (std::size_t i = 0; i < octets.size(); ++i) {
    char const* const at = text.data() + 3 * i;
    bool const isRead = std::from_chars(at, at + 2, octets[i], 16).ptr == at + 2;
    if (!isRead || (i > 0 && at[-1] != ':')) throw std::invalid_argument("no MAC address");
  }
  return octets;
}

}  // namespace

struct SimdJsonReader::Parser : simdjson::ondemand::parser {};

SimdJsonReader::SimdJsonReader() : parser_(std::make_unique<Parser>()) {}
SimdJsonReader::~SimdJsonReader() = default;

std::size_t SimdJsonReader::padding() {
  return simdjson::SIMDJSON_PADDING;
}

Port SimdJsonReader::read(std::string_view json) {
  simdjson::ondemand::document document =
      parser_->iterate(json.data(), json.size(), json.size() + padding());
  simdjson::ondemand::object object = document.get_object();
  auto const number = [&](std::string_view name) {
    return static_cast<std::uint32_t>(std::uint64_t(object[name]));
  };
  Port port;
  port.ifName = std::string_view(object["ifName"]);
  port.destId = number("destId");
  port.shadowIntfId = number("shadowIntfId");
  port.trafficClass = number("trafficClass");
  port.devName = std::string_view(object["devName"]);
  port.fapNum = number("fapNum");
  port.ctrl = bool(object["ctrl"]);
  port.hwLag = bool(object["hwLag"]);
  port.macAddr = macAddrOf(std::string_view(object["macAddr"]));
  return port;
}

}  // namespace Kest::Bench
