#include "agent/show/DriverView.h"

#include <cerrno>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "agent/process/SimulatedDriver.h"

namespace Kest::Agent {

namespace {

/// Undoes the `%XX` by which the simulated driver writes bytes that JSON cannot hold.
std::string unescaped(std::string_view text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '%' && at + 2 < text.size()) {
      bytes += static_cast<char>(std::stoi(std::string(text.substr(at + 1, 2)), nullptr, 16));
      at += 2;
    } else {
      bytes += text[at];
    }
  }
  return bytes;
}

}  // namespace

DriverView::DriverView(DriverLibrary const& driver)
    : driver_(driver), simulated_(SimulatedDriver(driver).isThere()) {}

std::optional<Mox::String8> DriverView::nextInterface(Mox::String8 const& ifName) const {
  if (!simulated_) return std::nullopt;
  return SimulatedDriver(driver_).nextInterface(ifName);
}

Json DriverView::interface(Mox::String8 const& ifName) const {
  if (!simulated_) return nullptr;
  std::string const text = SimulatedDriver(driver_).interface(ifName);
  if (text.empty()) return nullptr;
  Json known = Json::parse(text).front();
  known["devName"] = unescaped(known.at("devName").get_ref<std::string const&>());
  return known;
}

Json DriverView::device(Mox::String8 const& devName) const {
  auto const [error, up] = driver_.deviceState(devName);
  if (error == ENODEV) return nullptr;
  Json known = parameters(devName);
  if (error == 0) {
    known["up"] = up;
  } else {
    known["error"] = error;
  }
  return known;
}

Json DriverView::parameters(Mox::String8 const& devName) const {
  Json known = Json::object();
  if (!simulated_) return known;
  std::string const text = SimulatedDriver(driver_).device(devName);
  if (text.empty()) return known;
  Json const entry = Json::parse(text);
  Json const& parameters = entry.front().at("param");
  if (!parameters.is_null()) known = parameters;
  known["pciHam"] = unescaped(entry.begin().key());
  known["registered"] = !parameters.is_null();
  return known;
}

}  // namespace Kest::Agent
