#include "agent/show/Differences.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "agent/access/ValueText.h"
#include "driver/KestDma.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "registry/RecordTypes.h"

namespace Kest::Agent {

namespace {

using Hardware::Kest::Slice::DeviceState;
using Mox::String8;

Json const noSay = Json(Json::value_t::discarded);

template <class T>
Json jsonOf(T const& value) {
  return toJson(*Mox::genericOf(value));
}

/// What the driver says about `name`; `noSay` if it says nothing.
Json memberOf(Json const& known, std::string const& name) {
  return known.is_object() && known.contains(name) ? known.at(name) : noSay;
}

/// The driver holds a port's numbers as `int`, and has -1 for "no shadow interface".
bool isSame(std::string const& field, Json const& wanted, Json const& has) {
  if (!wanted.is_number() || !has.is_number()) return wanted == has;
  auto const number = wanted.get<std::uint32_t>();
  bool const isNone = field == "shadowIntfId" && number == Hardware::Kest::noVlanOrInterface;
  return static_cast<std::uint32_t>(has.get<std::int64_t>()) == (isNone ? ~0U : number);
}

/// Compares what the sides say of one port or device.
class SideComparison {
 public:
  SideComparison(Config const& config, Status const& status, DriverView const& driver)
      : config_(config), status_(status), driver_(driver) {}

  std::vector<Difference> device(String8 const& devName) {
    subject_ = "device " + nameText(devName);
    Json const known = driver_.device(devName);
    bool const isConfigured = static_cast<bool>(config_.deviceIteratorConst(devName));
    bool const isKnown = static_cast<bool>(status_.deviceIteratorConst(devName));
    bool const isRegistered = status_.device(devName).registered();
    Json const driven = memberOf(known, "registered");
    if (isConfigured != isRegistered || (isRegistered && driven == false)) {
      add("registered", isConfigured, isRegistered, driven);
    }
    bool const isStray = !isConfigured && isKnown && !isRegistered;
    // The poll asks about every device with a recorded state.
    bool const isAskedFor =
        isRegistered || static_cast<bool>(status_.deviceStateIteratorConst(devName));
    if (isStray || (isAskedFor && known.is_null())) {
      add("present", isConfigured, true, !known.is_null());
    }
    if (isConfigured) parameters(config_.device(devName), known);
    states(devName, isConfigured, known);
    return std::move(found_);
  }

  std::vector<Difference> port(String8 const& ifName) {
    subject_ = "port " + nameText(ifName);
    bool const isConfigured = static_cast<bool>(config_.switchPortIteratorConst(ifName));
    bool const isCreated = status_.switchPort(ifName).created();
    bool const isKnown = static_cast<bool>(status_.switchPortIteratorConst(ifName));
    Json const known = driver_.tellsAll() ? driver_.interface(ifName) : noSay;
    Json const exists = driver_.tellsAll() ? Json(!known.is_null()) : noSay;
    if (isConfigured != isCreated || (!exists.is_discarded() && exists != isCreated)) {
      add("created", isConfigured, isCreated, exists);
    }
    if (!isConfigured && isKnown && !isCreated) add("present", false, true, noSay);
    if (isConfigured) parameters(config_.switchPort(ifName), known);
    vlan(ifName, isConfigured && isCreated, known);
    return std::move(found_);
  }

 private:
  void add(char const* what, Json config, Json status, Json driver) {
    found_.push_back({subject_, what, std::move(config), std::move(status), std::move(driver)});
  }

  /// The applied state should be the configured one, and the driver's state the applied one, even
  /// if the device is no longer configured.
  void states(String8 const& devName, bool isConfigured, Json const& known) {
    DeviceState const configured = config_.deviceState(devName);
    DeviceState const applied = status_.deviceState(devName);
    Json const isUp = memberOf(known, "up");
    Json const driven = isUp.is_discarded() ? noSay
                        : isUp == true      ? jsonOf(DeviceState::deviceStateUp_)
                                            : jsonOf(DeviceState::deviceStateDown_);
    bool const isApplied = applied != DeviceState::deviceStateUnknown_;
    bool const isDriven = !isApplied || driven.is_discarded() || driven == jsonOf(applied);
    if ((isConfigured && configured != applied) || !isDriven) {
      add("state", isConfigured ? jsonOf(configured) : noSay, jsonOf(applied), driven);
    }
    Json const error = memberOf(known, "error");
    if (!error.is_discarded()) add("driver answer", noSay, noSay, error);
  }

  /// Compares the fields that both the record and the driver name.
  template <class Record>
  void parameters(Record const& record, Json const& known) {
    Json const wantedFields = jsonOf(record);
    for (auto const& [field, wanted] : wantedFields.items()) {
      Json const has = memberOf(known, field);
      if (!has.is_discarded() && !isSame(field, wanted, has)) {
        add(field.c_str(), wanted, noSay, has);
      }
    }
  }

  /// @param isUp whether a native VLAN is to be programmed if there is one
  void vlan(String8 const& ifName, bool isUp, Json const& known) {
    std::uint16_t const wanted = isUp ? config_.nativeVlan(ifName) : 0;
    std::uint16_t const applied = status_.nativeVlan(ifName);
    Json driven = memberOf(known, "nativeVlan");
    if (driven == Hardware::Kest::noVlanOrInterface) driven = 0;
    if (applied != wanted || (!driven.is_discarded() && driven != applied)) {
      add(Config::NativeVlans::name, isUp ? Json(wanted) : noSay, applied, driven);
    }
    mode(ifName, isUp && wanted != 0, applied != 0 ? memberOf(known, "mode") : noSay);
  }

  /// A mode is applied only together with a native VLAN; the driver has a flag for one of the
  /// modes.
  void mode(String8 const& ifName, bool isWanted, Json const& flag) {
    auto const applied = status_.switchportModeIteratorConst(ifName);
    Json const wanted = isWanted ? jsonOf(config_.switchportMode(ifName)) : noSay;
    Json const recorded = applied ? jsonOf(applied.value()) : noSay;
    bool const isFlag =
        applied && applied.value() == Bridging::SwitchportMode::switchportModeDot1qTunnel_;
    bool const isRecorded = isWanted ? wanted == recorded : !applied;
    if (!isRecorded || (!flag.is_discarded() && flag != isFlag)) {
      add(Config::SwitchportModes::name, wanted, recorded, flag);
    }
  }

  Config const& config_;
  Status const& status_;
  DriverView const& driver_;
  std::string subject_;
  std::vector<Difference> found_;
};

}  // namespace

OrderedKeys deviceNames(Mox::Ptr<Config const> const& config,
                        Mox::Ptr<Status const> const& status) {
  OrderedKeys names;
  names.add<Config::Devices>(config);
  names.add<Config::DeviceStates>(config);
  names.add<Status::Devices>(status);
  names.add<Status::DeviceStates>(status);
  return names;
}

OrderedKeys portNames(Mox::Ptr<Config const> const& config, Mox::Ptr<Status const> const& status,
                      DriverView const& driver) {
  OrderedKeys names;
  names.add<Config::SwitchPorts>(config);
  names.add<Status::SwitchPorts>(status);
  names.add<Status::NativeVlans>(status);
  names.add<Status::SwitchportModes>(status);
  names.add([driver, last = std::optional<String8>(String8())]() mutable {
    if (last) last = driver.nextInterface(*last);
    return last;
  });
  return names;
}

std::string Difference::message() const {
  std::string text = subject + " " + what + ":";
  char const* separator = " ";
  auto const side = [&](char const* name, Json const& value) {
    if (value.is_discarded()) return;
    text.append(separator).append(name).append(" ");
    text += value.is_string() ? value.get<std::string>() : value.dump();
    separator = ", ";
  };
  side("configuration", config);
  side("status", status);
  side("driver", driver);
  return text;
}

std::vector<Difference> deviceDifferences(Config const& config, Status const& status,
                                          DriverView const& driver, String8 const& devName) {
  return SideComparison(config, status, driver).device(devName);
}

std::vector<Difference> portDifferences(Config const& config, Status const& status,
                                        DriverView const& driver, String8 const& ifName) {
  return SideComparison(config, status, driver).port(ifName);
}

}  // namespace Kest::Agent
