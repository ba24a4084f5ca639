#include "bench/peers/FlatMachine.h"

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <ctime>

#include "bench/peers/FlatDriver.h"

namespace Kest::Bench {

namespace {

constexpr int tryAgain = 11;
constexpr useconds_t pauseMicroseconds = 100000;
constexpr unsigned short none = 4096;
constexpr double retryTimeoutSeconds = 60;

using MacText = std::array<char, 18>;

MacText textOf(std::array<std::uint8_t, 6> const& octets) {
  static constexpr char digits[] = "0123456789abcdef";
  MacText text{};
  for (std::size_t i = 0; i < octets.size(); ++i) {
    text[3 * i] = digits[octets[i] / 16];
    text[3 * i + 1] = digits[octets[i] % 16];
    if (i + 1 < octets.size()) text[3 * i + 2] = ':';
  }
  return text;
}

}  // namespace

FlatMachine::FlatMachine() {
  switchPorts.observerAdd([this](std::string const& ifName) { handleSwitchPort(ifName); });
  auto const vlanChanged = [this](std::string const& ifName) { handleNativeVlan(ifName); };
  nativeVlans.observers().add(vlanChanged, [] {});
  switchportModes.observers().add(vlanChanged, [] {});
}

void FlatMachine::handleSwitchPort(std::string const& ifName) {
  Port const port = switchPorts.lookup(ifName);
  if (port.ifName.empty() && port.macAddr == Port().macAddr) {
    FlatDriver::ifdel(ifName.c_str());
    created.del(ifName);
  } else {
    createInterface(port);
  }
  handleNativeVlan(ifName);
}

void FlatMachine::createInterface(Port const& port) {
  std::time_t const start = std::time(nullptr);
  int result = 0;
  do {
    if (std::difftime(std::time(nullptr), start) > retryTimeoutSeconds) std::abort();
    int const shadow = port.shadowIntfId == none ? -1 : static_cast<int>(port.shadowIntfId);
    result = FlatDriver::ifadd(port.ifName.c_str(), static_cast<int>(port.destId), shadow,
                               static_cast<int>(port.trafficClass), port.devName,
                               static_cast<int>(port.fapNum), port.ctrl, port.hwLag,
                               textOf(port.macAddr).data());
    usleep(pauseMicroseconds);
  } while (result == tryAgain);
  created.put(port.ifName, {port.ifName, result == 0});
}

void FlatMachine::handleNativeVlan(std::string const& ifName) {
  if (ifName.find("et") == std::string::npos) std::abort();
  std::uint16_t const vlan = nativeVlans.lookup(ifName);
  if (!created.lookup(ifName).created) return;
  if (vlan == 0) {
    FlatDriver::nativeVlan(ifName.c_str(), false, none);
    setVlans.del(ifName);
    setModes.del(ifName);
    return;
  }
  auto const mode = switchportModes.lookup(ifName);
  bool const tunnel = mode == Bridging::SwitchportMode::switchportModeDot1qTunnel_;
  if (FlatDriver::nativeVlan(ifName.c_str(), tunnel, vlan) != 0) std::abort();
  setVlans.put(ifName, vlan);
  setModes.put(ifName, mode);
}

}  // namespace Kest::Bench
