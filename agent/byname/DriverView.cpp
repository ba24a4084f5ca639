#include "agent/byname/DriverView.h"

#include <cerrno>
#include <nlohmann/json.hpp>
#include <string_view>

#include "agent/SimulatedDriver.h"

namespace Kest::Agent {

namespace {

Json found(std::map<Mox::String8, Json> const& all, Mox::String8 const& name) {
  auto const at = all.find(name);
  return at == all.end() ? Json(nullptr) : at->second;
}

/// Names in the simulated driver's state have `%XX` for bytes that JSON cannot hold.
Mox::String8 unescaped(std::string_view text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '%' && at + 2 < text.size()) {
      bytes += static_cast<char>(std::stoi(std::string(text.substr(at + 1, 2)), nullptr, 16));
      at += 2;
    } else {
      bytes += text[at];
    }
  }
  return Mox::String8(bytes);
}

}  // namespace

DriverView::DriverView(DriverLibrary const& driver)
    : driver_(driver), simulated_(SimulatedDriver(driver).isThere()) {
  if (!simulated_) return;
  Json const state = Json::parse(SimulatedDriver(driver).text("state"));
  for (auto const& [ifName, interface] : state.at("interfaces").items()) {
    Json& known = interfaces_[unescaped(ifName)] = interface;
    known["devName"] = std::string(unescaped(known.at("devName").get<std::string>()).view());
  }
  for (auto const& [pciPath, device] : state.at("devices").items()) {
    Json known = device.at("param").is_null() ? Json::object() : device.at("param");
    known["pciHam"] = std::string(unescaped(pciPath).view());
    known["registered"] = !device.at("param").is_null();
    devices_[unescaped(device.at("name").get<std::string>())] = known;
  }
}

Json DriverView::interface(Mox::String8 const& ifName) const {
  return found(interfaces_, ifName);
}

Json DriverView::device(Mox::String8 const& devName) const {
  auto const [error, up] = driver_.deviceState(devName);
  if (error == ENODEV) return nullptr;
  Json known = found(devices_, devName);
  if (known.is_null()) known = Json::object();
  if (error == 0) {
    known["up"] = up;
  } else {
    known["error"] = error;
  }
  return known;
}

}  // namespace Kest::Agent
