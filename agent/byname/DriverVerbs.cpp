#include <nlohmann/json.hpp>

#include "agent/SimulatedDriver.h"
#include "agent/byname/ControlError.h"
#include "agent/byname/Differences.h"
#include "agent/byname/Verbs.h"
#include "platform/mox/RangeException.h"
#include "registry/RecordTypes.h"

/// Configuration, status and driver beside each other, and the simulated driver.
namespace Kest::Agent {

namespace {

using Mox::String8;

/// What an entity's collections of ports, or of devices, say of one of them: the fields of its
/// record and the values of the others; null when they say nothing.
template <class Entity>
Json sideJson(Entity const& entity, std::string_view keyName, String8 const& key) {
  Json side = nullptr;
  entity.forEachCollection([&](auto const& collection) {
    using Value = typename std::remove_cvref_t<decltype(collection)>::Value;
    if (keyName != collection.keyName) return;
    auto const entry = collection.iteratorConst(key);
    if (!entry) return;
    Json const value = toJson(*Mox::genericOf<Value>(entry.value()));
    if (side.is_null()) side = Json::object();
    if (value.is_object()) {
      side.update(value);
    } else {
      side[collection.name] = value;
    }
  });
  return side;
}

Json rowJson(Served const& served, std::string_view keyName, String8 const& key, Json driver) {
  return {{"name", std::string(key.view())},
          {"config", sideJson(*served.config, keyName, key)},
          {"status", sideJson(*served.status, keyName, key)},
          {"driver", std::move(driver)}};
}

Json differenceJson(Difference const& difference) {
  Json json{{"subject", difference.subject}, {"what", difference.what}};
  auto const side = [&](char const* name, Json const& value) {
    if (!value.is_discarded()) json[name] = value;
  };
  side("config", difference.config);
  side("status", difference.status);
  side("driver", difference.driver);
  json["message"] = difference.message();
  return json;
}

/// @param refusedKind the kind of error when the simulated driver refuses, as opposed to not being
/// there
template <class Work>
void steer(SimulatedDriver const& simulated, Wire::ErrorKind refusedKind, Work const& work) {
  try {
    work();
  } catch (DriverError const& refused) {
    throw ControlError(simulated.isThere() ? refusedKind : Wire::ErrorKind::refused,
                       refused.what());
  }
}

}  // namespace

Json Verbs::verify(Request const& request) {
  request.checkMembers({});
  Json list = Json::array();
  for (Difference const& difference :
       differences(*served_.config, *served_.status, DriverView(served_.driver))) {
    list.push_back(differenceJson(difference));
  }
  return {{"clean", list.empty()}, {"differences", list}};
}

Json Verbs::show(Request const& request) {
  request.checkMembers({});
  DriverView const driver(served_.driver);
  Json devices = Json::array();
  for (String8 const& devName : deviceNames(*served_.config, *served_.status)) {
    devices.push_back(rowJson(served_, Config::Devices::keyName, devName, driver.device(devName)));
  }
  Json ports = Json::array();
  for (String8 const& ifName : portNames(*served_.config, *served_.status, driver)) {
    ports.push_back(
        rowJson(served_, Config::SwitchPorts::keyName, ifName, driver.interface(ifName)));
  }
  return {{"devices", devices}, {"ports", ports}};
}

Json Verbs::driver(Request const& request) {
  request.checkMembers({"action", "text", "device"});
  request.string("action");  // there is no default
  std::string const action = request.oneOf("action", {"log", "dump", "state", "fault", "flip"});
  SimulatedDriver const simulated(served_.driver);
  if (action == "fault") {
    std::string const text = request.string("text");
    if (text.find('\0') != std::string::npos) {  // which would end it for the driver
      throw ControlError(Wire::ErrorKind::file, "faults: expected a text without NUL");
    }
    steer(simulated, Wire::ErrorKind::file, [&] { simulated.faultsAre(text); });
    return Json::object();
  }
  if (action == "flip") {
    String8 const devName(request.string("device"));
    steer(simulated, Wire::ErrorKind::path, [&] { simulated.flip(devName); });
    return Json::object();
  }
  if (action == "state") return {{"state", Json::parse(simulated.text("state"))}};
  return {{"text", simulated.text(action.c_str())}};
}

}  // namespace Kest::Agent
