#include <memory>
#include <nlohmann/json.hpp>
#include <utility>

#include "agent/access/ControlError.h"
#include "agent/process/SimulatedDriver.h"
#include "agent/show/Differences.h"
#include "agent/verbs/PiecewiseResult.h"
#include "agent/verbs/Verbs.h"
#include "platform/mox/RangeException.h"
#include "registry/RecordTypes.h"

/// Configuration, status and driver beside each other, and the simulated driver.
namespace Kest::Agent {

namespace {

using Mox::String8;

/// All that an entity holds about one port or device: the fields of its record, and the values of
/// the other collections with that key; null if it holds nothing.
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

Json rowJson(RunningAgent const& agent, std::string_view keyName, String8 const& key, Json driver) {
  return {{"name", std::string(key.view())},
          {"config", sideJson(*agent.config, keyName, key)},
          {"status", sideJson(*agent.status, keyName, key)},
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

/// A JSON text without the white space between its words.
std::string onOneLine(std::string_view json) {
  std::string line;
  bool inString = false;
  bool isEscaped = false;
  for (char const c : json) {
    if (!inString && (c == ' ' || c == '\n')) continue;
    line += c;
    if (c == '"' && !isEscaped) inString = !inString;
    isEscaped = c == '\\' && !isEscaped;
  }
  return line;
}

/// @param refusedKind the kind of error if the simulated driver refuses; if it is not there, the
/// kind is `refused`
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

Answer Verbs::verify(Request const& request) {
  request.checkMembers({});
  DriverView const driver(agent_.driver);
  auto result = std::make_unique<PiecewiseResult>();
  auto const compare = [&](OrderedKeys names, auto differences) {
    result->addItems(std::move(names), [&agent = agent_, &list = *result, driver,
                                        differences](String8 const& name) {
      for (Difference const& found : differences(*agent.config, *agent.status, driver, name)) {
        list.item(differenceJson(found));
      }
    });
  };
  result->add(R"({"differences":[)");
  compare(deviceNames(agent_.config, agent_.status), &deviceDifferences);
  compare(portNames(agent_.config, agent_.status, driver), &portDifferences);
  result->addMade([driver](bool anyDifferences) {
    return std::string(anyDifferences ? R"(],"clean":false)" : R"(],"clean":true)") +
           (driver.tellsAll() ? "}" : R"(,"notCompared":["interfaces","device parameters"]})");
  });
  return result;
}

Answer Verbs::show(Request const& request) {
  request.checkMembers({});
  DriverView const driver(agent_.driver);
  auto result = std::make_unique<PiecewiseResult>();
  result->add(R"({"devices":[)");
  result->addItems(deviceNames(agent_.config, agent_.status), [&agent = agent_, &list = *result,
                                                               driver](String8 const& devName) {
    list.item(rowJson(agent, Config::Devices::keyName, devName, driver.device(devName)));
  });
  result->add(R"(],"ports":[)");
  result->addItems(
      portNames(agent_.config, agent_.status, driver),
      [&agent = agent_, &list = *result, driver](String8 const& ifName) {
        list.item(rowJson(agent, Config::SwitchPorts::keyName, ifName, driver.interface(ifName)));
      });
  result->add("]}");
  return result;
}

Answer Verbs::driver(Request const& request) {
  request.checkMembers({"action", "text", "device"});
  request.string("action");  // there is no default
  std::string const action = request.oneOf("action", {"log", "dump", "state", "fault", "flip"});
  SimulatedDriver const simulated(agent_.driver);
  if (action == "fault") {
    std::string const text = request.string("text");
    if (text.find('\0') != std::string::npos) {  // the driver would stop reading there
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
  std::string const text = simulated.text(action.c_str());
  auto result = std::make_unique<PiecewiseResult>();
  result->add(action == "state" ? R"({"state":)" + onOneLine(text) + "}"
                                : R"({"text":)" + jsonText(text) + "}");
  return result;
}

}  // namespace Kest::Agent
