#include "agent/show/DriverView.h"

#include <cerrno>
#include <nlohmann/json.hpp>
#include <string>

#include "agent/process/SimulatedDriver.h"
#include "text/Escapes.h"

namespace Kest::Agent {

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
  known["devName"] = Text::percentDecoded(known.at("devName").get_ref<std::string const&>());
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
  known["pciHam"] = Text::percentDecoded(entry.begin().key());
  known["registered"] = !parameters.is_null();
  return known;
}

}  // namespace Kest::Agent
