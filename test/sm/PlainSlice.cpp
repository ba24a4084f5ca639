#include "test/sm/PlainSlice.h"

#include <limits>
#include <sstream>

namespace Hardware::Kest::Slice {

namespace {

template <class... Values>
std::string text(Values const&... values) {
  std::ostringstream out;
  out << std::boolalpha;
  (out << ... << values);
  return out.str();
}

template <class Value>
void put(std::map<std::string, Value>& map, char const* name, std::string const& key,
         Value const& value, Support::Lines& lines) {
  auto const found = map.find(key);
  if (found != map.end() && found->second == value) return;
  map[key] = value;
  lines.push_back(text("status ", name, " ", key, ": ", value));
}

template <class Value>
void drop(std::map<std::string, Value>& map, char const* name, std::string const& key,
          Support::Lines& lines) {
  if (map.erase(key) == 1) lines.push_back(text("status ", name, " ", key, ": none"));
}

}  // namespace

void PlainReactor::activeIs(bool on) {
  if (on == active) return;
  active = on;
  if (!on) wasRegistered = registered;
  registered = on ? registered || wasRegistered : false;
}

void PlainReactor::zombieIs(bool on) {
  if (on == zombie) return;
  activeIs(!on);
  zombie = on;
}

Support::Lines PlainSlice::content() const {
  Support::Lines all;
  auto const add = [&](char const* name, auto const& map) {
    for (auto const& [key, value] : map) {
      all.push_back(text("status ", name, " ", key, ": ", value));
    }
  };
  add("switchPort", status.switchPort);
  add("nativeVlan", status.nativeVlan);
  add("switchportMode", status.switchportMode);
  add("device", status.device);
  add("deviceState", status.deviceState);
  return all;
}

int PlainSlice::call(char const* operation, std::string const& name, std::string const& others) {
  lines.push_back(text(operation, "('", name, "'", others, ")"));
  RecordingDriver::Answers& queue = answers[{operation, name}];
  if (queue.empty()) return 0;
  int const answer = queue.front();
  queue.pop_front();
  return answer;
}

void PlainSlice::announce(std::size_t config, Handler handler, std::string const& key) {
  if (!configReactor || configReactor->notifier != config) return;
  if (configReactor->registered && !configReactor->zombie) (this->*handler)(key);
}

void PlainSlice::configIs(std::optional<std::size_t> config) {
  if (!config) {
    configReactor.reset();
  } else if (!configReactor) {
    configReactor = PlainReactor{.notifier = *config};
    configReactor->zombieIs(zombie);
  } else if (configReactor->notifier != *config) {
    configReactor->notifier = *config;
    configReactor->zombieIs(zombie);
  }
}

void PlainSlice::stateTimerIs(std::size_t clock) {
  if (timer.notifier == clock) return;
  timer.notifier = clock;
  if (!timer.zombie) handleTimerExpired();
  timer.registered = true;
  timer.zombieIs(zombie);
}

void PlainSlice::newStateTimer(std::size_t clock) {
  timer = PlainReactor{.notifier = clock};
  timer.zombieIs(zombie);
  timeMin = 0;
}

void PlainSlice::activeIs(bool on) {
  if (on == active) return;
  active = on;
  if (configReactor) configReactor->activeIs(on);
  timer.activeIs(on);
}

void PlainSlice::zombieIs(bool on) {
  if (on == zombie) return;
  if (configReactor) configReactor->zombieIs(on);
  timer.zombieIs(on);
  zombie = on;
}

void PlainSlice::modeIs(SmMode value) {
  if (mode == value) return;
  mode = value;
  handleMode();
}

void PlainSlice::handleMode() {
  if (!simulated && mode == SmMode::smModePolling_) timeMin = now() + 2.0;
}

int PlainSlice::addInterface(KestSliceDmaConfig::SwitchPort const& port) {
  std::string const shadow =
      port.shadowIntfId() == 4096 ? "-1" : std::to_string(port.shadowIntfId());
  std::string const others =
      text(", ", port.destId(), ", ", shadow, ", ", port.trafficClass(), ", '", port.devName(),
           "', ", port.fapNum(), ", ", port.ctrl(), ", ", port.hwLag(), ", '", port.macAddr(), "'");
  std::int64_t const start = microseconds / 1000000;
  while (true) {
    if (microseconds / 1000000 - start > retrySeconds) throw ProcessEnds();
    int const result = call("kestDmaIfadd", port.ifName().charPtr(), others);
    lines.emplace_back("usleep(100000)");
    microseconds += 100000;
    if (result != 11) return result;
  }
}

void PlainSlice::handleSwitchPort(std::string const& ifName) {
  KestSliceDmaConfig::SwitchPort const port = valueOf(config().switchPort, ifName);
  if (port.ifName() == "" && port.macAddr() == Pelk::EthAddr()) {
    call("kestDmaIfdel", ifName);
    drop(status.switchPort, "switchPort", ifName, lines);
  } else {
    std::string const outcome = addInterface(port) == 0 ? "created" : "not created";
    put(status.switchPort, "switchPort", ifName, outcome, lines);
  }
  handleNativeVlan(ifName);
}

void PlainSlice::handleNativeVlan(std::string const& ifName) {
  if (ifName.find("et") == std::string::npos) throw ProcessEnds();
  if (valueOf(status.switchPort, ifName) != "created") return;
  std::uint16_t const vlan = valueOf(config().nativeVlan, ifName);
  Bridging::SwitchportMode const portMode = valueOf(config().switchportMode, ifName);
  if (vlan == 0) {
    call("kestDmaNativeVlan", ifName, ", false, 4096");
    drop(status.nativeVlan, "nativeVlan", ifName, lines);
    drop(status.switchportMode, "switchportMode", ifName, lines);
  } else {
    bool const flag = static_cast<int>(portMode) == 2;
    if (call("kestDmaNativeVlan", ifName, text(", ", flag, ", ", vlan)) != 0) throw ProcessEnds();
    put(status.nativeVlan, "nativeVlan", ifName, vlan, lines);
    put(status.switchportMode, "switchportMode", ifName, portMode, lines);
  }
}

void PlainSlice::handleDevice(std::string const& devName) {
  if (config().device.count(devName) == 0) {
    drop(status.device, "device", devName, lines);
    return;
  }
  KestSliceDmaConfig::Device const device = config().device.at(devName);
  std::string const handle =
      device.pciHam() ? text("'", device.pciHam()->name().string(), "'") : "null";
  call("kestDmaDeviceRename", devName, ", " + handle);
  call("kestDmaDeviceDown", devName);
  int const result = call(
      "kestDmaDeviceParam", devName,
      text(", ", device.numFaps(), ", ", device.fapType(), ", ", device.cpuTmSysPort(), ", ",
           device.cpuEthSysPort(), ", ", device.cpuRawSysPort(), ", ", device.sflowPort(), ", ",
           device.cpuAradSysPort(), ", ", device.cpuArad(), ", ", device.cpuAradBridge()));
  std::string const outcome = result == 0 ? "registered" : "not registered";
  put(status.device, "device", devName, outcome, lines);
  put(status.deviceState, "deviceState", devName, DeviceState::deviceStateUnknown_, lines);
}

void PlainSlice::handleDeviceState(std::string const& devName) {
  if (valueOf(status.device, devName) != "registered") return;
  DeviceState const wanted = valueOf(config().deviceState, devName);
  bool const wantedUp = wanted == DeviceState::deviceStateUp_;
  if (!wantedUp && wanted != DeviceState::deviceStateDown_) throw ProcessEnds();
  if (valueOf(status.deviceState, devName) == wanted) return;
  if (call(wantedUp ? "kestDmaDeviceUp" : "kestDmaDeviceDown", devName) != 0) return;
  put(status.deviceState, "deviceState", devName, wanted, lines);
}

void PlainSlice::handleTimerExpired() {
  for (std::string const& devName : pollOrder) {
    if (call("kestDmaIsDeviceUp", devName) != 0) throw ProcessEnds();
    DeviceState const expected = status.deviceState.at(devName);
    if (expected == DeviceState::deviceStateUnknown_) continue;
    if ((expected == DeviceState::deviceStateUp_) != valueOf(up, devName)) throw ProcessEnds();
  }
  timeMin = now() + 2.0;
}

void PlainSlice::doVerify() const {
  for (auto const& [ifName, port] : config().switchPort) {
    if (valueOf(status.switchPort, ifName) != "created") throw ProcessEnds();
  }
  for (auto const& [devName, device] : config().device) {
    if (valueOf(status.device, devName) != "registered") throw ProcessEnds();
    if (valueOf(status.deviceState, devName) != valueOf(config().deviceState, devName)) {
      throw ProcessEnds();
    }
  }
}

void PlainSlice::dispatch(std::size_t clock) {
  if (timer.notifier != clock || !timer.registered || timeMin > now()) return;
  timeMin = std::numeric_limits<double>::infinity();
  if (!timer.zombie) handleTimerExpired();
}

}  // namespace Hardware::Kest::Slice
