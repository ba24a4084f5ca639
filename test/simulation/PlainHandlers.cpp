#include <cerrno>
#include <csignal>

#include "test/simulation/PlainWorld.h"
#include "test/simulation/Values.h"

namespace Simulation {

namespace {

constexpr std::int32_t up = 1;
constexpr std::int32_t down = 2;

char const* stateText(std::int32_t state) {
  static constexpr char const* names[] = {"deviceStateUnknown", "deviceStateUp", "deviceStateDown",
                                          "DeviceState(3)"};
  return names[state];
}

char const* upOrDown(bool isUp) {
  return isUp ? "up" : "down";
}

}  // namespace

PlainCell const& PlainWorld::configured(unsigned collection, unsigned key) const {
  return state.entities[static_cast<unsigned>(state.handled)].cells[collection][key];
}

PlainCell const& PlainWorld::recorded(unsigned collection, unsigned key) const {
  return state.entities[state.machine.status].cells[collection][key];
}

void PlainWorld::record(unsigned collection, unsigned key, std::int32_t number) {
  set(state.machine.status, collection, key, number);
}

void PlainWorld::forget(unsigned collection, unsigned key) {
  erase(state.machine.status, collection, key);
}

void PlainWorld::apply(Effect effect) {
  switch (effect) {
    case Effect::none:
      return;
    case Effect::thrown:
      state.strange = true;
      throw Thrown();
    case Effect::retry0:
      state.retrySeconds = 0;
      return;
    case Effect::retry9:
      state.retrySeconds = 9;
      return;
    case Effect::wallForward:
      state.wall += 1000;
      return;
    case Effect::wallBack:
      state.wall -= 1000;
      return;
  }
}

int PlainWorld::called(Answer const& answer) {
  apply(answer.effect);
  return answer.result;
}

void PlainWorld::assertionFails(char const* place, char const* expression) {
  line(program_invocation_short_name, ": KestSliceDmaSm:", place, ": Assertion `", expression,
       "' failed.");
  throw ProcessEnds{SIGABRT};
}

void PlainWorld::handle(unsigned handler, unsigned key) {
  Meanwhile const underWay(state.handlers, state.handlers + 1);
  Meanwhile const begun(state.handled, bound());
  reachIf(state.handlers > 1, Probe::handlerInsideHandler);
  switch (handler) {
    case 0:
      return handleSwitchPort(key);
    case 1:
      return handleNativeVlan(key);
    case 2:
      return handleDevice(key);
    default:
      return handleDeviceState(key);
  }
}

void PlainWorld::handleSwitchPort(unsigned key) {
  auto const name = keyName(switchPorts, key).view();
  trace(8, 126, "handleSwitchPort", "KestSliceDmaSm::handleSwitchPort ifName=", name);
  PlainCell const port = configured(switchPorts, key);
  bool const hasAddress = port.entry != 0 && portRow(port.number).macAddr != noMac;
  reachIf(port.entry != 0 && name.empty() && hasAddress, Probe::portWithAddressButNoName);
  reachIf(port.entry != 0 && !name.empty() && !hasAddress, Probe::portWithNameButNoAddress);
  if (port.entry == 0 || (name.empty() && !hasAddress)) {
    line("kestDmaIfdel('", name, "')");
    called(state.driver.call(Call::ifdel, key));
    reach(Probe::portRemoved);
    reachIf(recorded(nativeVlans, key).entry != 0, Probe::portRemovedWithVlanLeft);
    forget(switchPorts, key);
  } else {
    bool const existed = state.driver.interface(key).exists;
    bool const created = createInterface(key, port.number) == 0;
    reach(created ? Probe::portCreated : Probe::portRefused);
    reachIf(created && existed, Probe::portChangedInPlace);
    record(switchPorts, key, created ? 1 : 0);
  }
  handleNativeVlan(key);
}

int PlainWorld::createInterface(unsigned key, std::int32_t number) {
  PortRow const& row = portRow(number);
  int const shadow = row.shadowIntfId == 4096 ? -1 : static_cast<int>(row.shadowIntfId);
  reachIf(shadow == -1, Probe::portWithoutShadow);
  auto const time = [&] { return state.wall + state.microseconds / 1000000; };
  std::int64_t const start = time();
  for (unsigned attempt = 0;; ++attempt) {
    if (time() - start > state.retrySeconds) {
      reach(Probe::retryPeriodRanOut);
      assertionFails(
          "142: void Hardware::Kest::Slice::KestSliceDmaSm::handleSwitchPort(Mox::String)",
          "0 && \"Timed out trying to create kernel interface. \" "
          "\"This should only happen on standby.\"");
    }
    line("kestDmaIfadd('", keyName(switchPorts, key).view(), "', ", row.destId, ", ", shadow, ", ",
         row.trafficClass, ", '", row.devName, "', ", row.fapNum, ", ", row.ctrl, ", ", row.hwLag,
         ", '", row.macAddr, "')");
    Answer const answer = state.driver.call(Call::ifadd, key);
    if (answer.result == 11) {
      reachIf(answer.effect == Effect::retry0 || answer.effect == Effect::retry9,
              Probe::retryPeriodChangedDuringRetries);
      reachIf(answer.effect == Effect::wallBack, Probe::wallClockSetBackDuringRetries);
      reachIf(answer.effect == Effect::wallForward, Probe::wallClockSetForwardDuringRetries);
    }
    int const result = called(answer);
    line("usleep(100000)");
    state.microseconds += 100000;
    reachIf(result == 0 && attempt > 0, Probe::portCreatedAfterRetries);
    if (result != 11) return result;
  }
}

void PlainWorld::handleNativeVlan(unsigned key) {
  auto const name = keyName(nativeVlans, key).view();
  trace(8, 170, "handleNativeVlan", "KestSliceDmaSm::handleNativeVlan ifName=", name);
  if (name.find("et") == std::string_view::npos) {
    reach(Probe::nameWithoutEt);
    assertionFails("171: void Hardware::Kest::Slice::KestSliceDmaSm::handleNativeVlan(Mox::String)",
                   "ifName.pos( \"et\" ) != Mox::String::npos");
  }
  std::int32_t const vlan = configured(nativeVlans, key).number;
  if (recorded(switchPorts, key).number != 1) {
    reach(Probe::vlanOfUncreatedPort);
    return;
  }
  if (vlan == 0) {
    line("kestDmaNativeVlan('", name, "', false, 4096)");
    int const result = called(state.driver.call(Call::nativeVlan, key, 4096));
    reach(result == 0 ? Probe::vlanCleared : Probe::vlanClearRefused);
    forget(nativeVlans, key);
    forget(switchportModes, key);
    return;
  }
  std::int32_t const mode = configured(switchportModes, key).number;
  line("kestDmaNativeVlan('", name, "', ", mode == 2, ", ", vlan, ")");
  if (called(state.driver.call(Call::nativeVlan, key, static_cast<unsigned>(vlan))) != 0) {
    reach(Probe::vlanRefused);
    assertionFails("186: void Hardware::Kest::Slice::KestSliceDmaSm::handleNativeVlan(Mox::String)",
                   "error == 0");
  }
  reach(mode == 2 ? Probe::vlanSetAsTunnel : Probe::vlanSet);
  record(nativeVlans, key, vlan);
  std::int32_t const modeNow = configured(switchportModes, key).number;
  reachIf(modeNow != mode, Probe::modeChangedBetweenVlanAndMode);
  record(switchportModes, key, modeNow);
}

void PlainWorld::handleDevice(unsigned key) {
  auto const name = keyName(devices, key).view();
  constexpr char const* const signature =
      "void Hardware::Kest::Slice::KestSliceDmaSm::handleDevice(Mox::String)";
  trace(1, 204, "handleDevice", signature, " device: '", name, "'");
  PlainCell const configuredDevice = configured(devices, key);
  if (configuredDevice.entry == 0 || name.empty()) {
    reachIf(recorded(devices, key).entry != 0, Probe::deviceForgotten);
    forget(devices, key);
    return;
  }
  trace(1, 211, "handleDevice", signature, " device: '", name, "'");
  DeviceRow const& row = deviceRow(configuredDevice.number);
  reachIf(state.driver.device(key).up, Probe::deviceRegisteredWhileUp);
  if (row.handle < 0) {
    line("kestDmaDeviceRename('", name, "', null)");
  } else {
    line("kestDmaDeviceRename('", name, "', '", handleNames[row.handle], "')");
  }
  called(state.driver.call(Call::rename, key));
  line("kestDmaDeviceDown('", name, "')");
  called(state.driver.call(Call::down, key));
  std::string ports;
  for (unsigned i = 0; i < 7; ++i) ports += text(", ", row.firstPort + i);
  line("kestDmaDeviceParam('", name, "', ", row.numFaps, ", ", row.fapType, ports, ")");
  bool const registered = called(state.driver.call(Call::param, key)) == 0;
  reach(registered ? Probe::deviceRegistered : Probe::deviceRefused);
  record(devices, key, registered ? 1 : 0);
  record(deviceStates, key, 0);
}

void PlainWorld::handleDeviceState(unsigned key) {
  auto const name = keyName(devices, key).view();
  trace(1, 236, "handleDeviceState",
        "void Hardware::Kest::Slice::KestSliceDmaSm::handleDeviceState(Mox::String) device: '",
        name, "' state: ", stateText(configured(deviceStates, key).number), "/",
        stateText(recorded(deviceStates, key).number));
  if (recorded(devices, key).number != 1) {
    reach(Probe::deviceStateOfUnregistered);
    return;
  }
  std::int32_t const wanted = configured(deviceStates, key).number;
  if (wanted != up && wanted != down) {
    reach(wanted == 0 ? Probe::deviceStateUnknownOfRegistered : Probe::deviceStateNameless);
    assertionFails(
        "262: void Hardware::Kest::Slice::KestSliceDmaSm::handleDeviceState(Mox::String)", "false");
  }
  PlainCell const& current = recorded(deviceStates, key);
  if (current.entry != 0 && current.number == wanted) {
    reach(Probe::deviceStateAlreadyThere);
    return;
  }
  line(wanted == up ? "kestDmaDeviceUp('" : "kestDmaDeviceDown('", name, "')");
  int const result = called(state.driver.call(wanted == up ? Call::up : Call::down, key));
  if (result != 0) {
    reach(Probe::deviceUpRefused);
    return;
  }
  reach(wanted == up ? Probe::deviceUp : Probe::deviceDown);
  record(deviceStates, key, wanted);
}

/// However the pass ends, there is another one: the timer that is there then is armed again.
void PlainWorld::handleTimerExpired() {
  auto const again = [this] {
    if (state.timers[0].held) state.timers[0].timeMin = now() + 2.0;
  };
  try {
    pollDevices();
  } catch (Thrown const&) {
    again();
    throw;
  }
  again();
}

void PlainWorld::pollDevices() {
  trace(8, 84, "handleTimerExpired",
        "void Hardware::Kest::Slice::KestSliceDmaSm::handleTimerExpired()");
  reachIf(state.machine.mode != 2, Probe::pollAfterModeWasLeft);
  unsigned asked = 0;
  for (unsigned const key : walkOf(deviceStates)) {
    PlainCell const& expected = recorded(deviceStates, key);
    if (expected.entry == 0) continue;
    pollDevice(key, expected.number);
    ++asked;
  }
  reach(asked == 0 ? Probe::pollOfNothing : Probe::pollClean);
}

void PlainWorld::pollDevice(unsigned key, std::int32_t expected) {
  auto const name = keyName(deviceStates, key).view();
  line("kestDmaIsDeviceUp('", name, "')");
  bool const isUp = state.driver.device(key).up;
  int const result = called(state.driver.call(Call::isUp, key));
  if (result != 0) {
    line("kestDmaIsDeviceUp ", name, " returned ", result);
    if (result != 19) {
      reach(Probe::pollRefused);
      assertionFails("97: void Hardware::Kest::Slice::KestSliceDmaSm::handleTimerExpired()",
                     "false");
    }
    reach(state.signalIgnored ? Probe::pollGoesOnAfterIgnoredSignal : Probe::pollDeviceGone);
    if (!state.signalIgnored) throw ProcessEnds{7};
  }
  if (expected == 0) {
    reach(Probe::pollSkipsUnknown);
    return;
  }
  if (expected != up && expected != down) {
    reach(Probe::pollStateOutOfRange);
    assertionFails("103: void Hardware::Kest::Slice::KestSliceDmaSm::handleTimerExpired()",
                   "expectedState == DeviceState::deviceStateDown_ || "
                   "expectedState == DeviceState::deviceStateUp_");
  }
  if ((expected == up) == isUp) return;
  reach(isUp ? Probe::pollMismatchUp : Probe::pollMismatchDown);
  std::string const states =
      text(name, " expected state: ", upOrDown(expected == up), ", actual state: ", upOrDown(isUp));
  line("handleTimerExpired: ", states);
  line("kestDmaDump()");
  line("log 3 KEST_DMA_DEVICE_STATE_ERROR: ", states);
  throw ProcessEnds{SIGABRT};
}

void PlainWorld::doVerify() {
  constexpr char const* const signature = "void Hardware::Kest::Slice::KestSliceDmaSm::doVerify()";
  Meanwhile const begun(state.handled, bound());
  trace(0, 34, "doVerify", signature);
  for (unsigned const key : walkOf(switchPorts)) {
    if (configured(switchPorts, key).entry == 0 || recorded(switchPorts, key).number == 1) continue;
    reach(Probe::verifyFindsPort);
    assertionFails(text("38: ", signature).c_str(),
                   "status()->switchPort( iterDev->ifName() ).created()");
  }
  for (unsigned const key : walkOf(devices)) {
    if (configured(devices, key).entry == 0) continue;
    trace(0, 48, "doVerify", "doVerify device: '", keyName(devices, key).view(), "' registered ",
          recorded(devices, key).number, " confState: '",
          stateText(configured(deviceStates, key).number), "' statState: '",
          stateText(recorded(deviceStates, key).number), "'");
    if (recorded(devices, key).number != 1) {
      reach(Probe::verifyFindsDevice);
      assertionFails(text("49: ", signature).c_str(),
                     "status()->device( iterDev->devName() ).registered()");
    }
    if (recorded(deviceStates, key).number == configured(deviceStates, key).number) continue;
    reach(Probe::verifyFindsState);
    assertionFails(text("51: ", signature).c_str(),
                   "status()->deviceState( iterDev->devName() ) == "
                   "config()->deviceState( iterDev->devName() )");
  }
  reach(Probe::verifyHolds);
}

}  // namespace Simulation
