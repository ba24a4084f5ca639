#include <limits>

#include "test/simulation/PlainWorld.h"
#include "test/simulation/Values.h"

namespace Simulation {

void PlainWorld::newMachine(int config, unsigned status) {
  dropMachine();
  PlainMachine& machine = state.machine;
  machine = PlainMachine{.exists = true, .status = status};
  state.strange = false;
  for (auto const& cells : state.entities[status].cells) {
    for (PlainCell const& at : cells) {
      // What another machine has recorded, this one has not done.
      if (at.entry != 0) state.strange = true;
    }
  }
  reachIf(state.strange, Probe::machineMadeAgain);
  reachIf(config == nobody, Probe::machineWithoutConfig);
  if (config != nobody) configIs(config);
  handleInitialized();
}

void PlainWorld::dropMachine() {
  if (!state.machine.exists) return;
  reachIf(state.deliveries > 0, Probe::machineGoesDuringDelivery);
  zombieIs(true);
  releaseReactor();
  dropTimer(0);
  state.machine.exists = false;
}

void PlainWorld::releaseReactor() {
  int const reactor = state.machine.reactor;
  if (reactor == nobody) return;
  reachIf(state.handlers > 0, Probe::configUnboundInsideHandler);
  state.machine.reactor = nobody;
  reactorZombieIs(static_cast<unsigned>(reactor), true);
  letGo(static_cast<unsigned>(reactor));
}

void PlainWorld::configIs(int config) {
  PlainMachine& machine = state.machine;
  if (bound() == config) return;
  if (config == nobody) {
    reachIf(state.deliveries > 0, Probe::configUnboundDuringDelivery);
    reach(Probe::machineUnbound);
    releaseReactor();
    return;
  }
  if (isBound()) {
    auto const reactor = static_cast<unsigned>(machine.reactor);
    reachIf(!state.observers[reactor].active, Probe::configReboundWhileInactive);
    reachIf(state.deliveries > 0 && state.handlers == 0, Probe::configReboundDuringDelivery);
    reachIf(state.handlers > 0, Probe::configReboundInsideHandler);
    notifierIs(reactor, config);
  } else {
    unsigned const reactor = newObserver(nobody);
    machine.reactor = static_cast<int>(reactor);
    notifierIs(reactor, config);
    registeredIs(reactor, true);
    state.observers[reactor].active = true;
    reachIf(machine.zombie, Probe::machineBoundAsZombie);
  }
  reactorZombieIs(static_cast<unsigned>(machine.reactor), machine.zombie);
}

int PlainWorld::bound() const {
  return isBound() ? state.observers[static_cast<unsigned>(state.machine.reactor)].notifier
                   : nobody;
}

std::string PlainWorld::boundText() const {
  return bound() == nobody ? "none" : entityNames[bound()];
}

void PlainWorld::configDel() {
  std::string const bound = boundText();
  releaseReactor();
  line("returned ", bound);
}

void PlainWorld::clockIs(int clock) {
  PlainTimer& timer = state.timers[0];
  if (timer.notifier == clock) return;
  if (clock == nobody) {
    dropTimer(0);
    return;
  }
  if (timer.held) {
    timerRegisteredIs(0, false);
    timerNotifierIs(0, clock);
    try {
      reachIf(!timer.zombie, Probe::pollByMovedTimer);
      if (!timer.zombie) handleTimerExpired();
    } catch (Thrown const&) {
      timerRegisteredIs(0, true);
      throw;
    }
    timerRegisteredIs(0, true);
  } else {
    newTimer(0, static_cast<unsigned>(clock));
  }
  timerZombieIs(state.machine.zombie);
}

void PlainWorld::clockDel() {
  PlainTimer const& timer = state.timers[0];
  std::string const observed = timer.held ? text("clock", timer.notifier) : "none";
  dropTimer(0);
  line("returned ", observed);
}

void PlainWorld::activeIs(bool on) {
  PlainMachine& machine = state.machine;
  if (machine.active == on) return;
  machine.active = on;
  if (isBound()) reactorActiveIs(static_cast<unsigned>(machine.reactor), on);
  if (state.timers[0].held) timerActiveIs(on);
}

void PlainWorld::zombieIs(bool on) {
  PlainMachine& machine = state.machine;
  if (machine.zombie == on) return;
  if (isBound()) reactorZombieIs(static_cast<unsigned>(machine.reactor), on);
  if (state.timers[0].held) timerZombieIs(on);
  machine.zombie = on;
}

void PlainWorld::reactorActiveIs(unsigned observer, bool on) {
  PlainObserver& self = state.observers[observer];
  if (self.active == on) return;
  self.active = on;
  if (!on) self.wasRegistered = self.registered;
  reachIf(on && !self.wasRegistered, Probe::reactorStaysUnregistered);
  if (!on || self.wasRegistered) registeredIs(observer, on);
}

void PlainWorld::reactorZombieIs(unsigned observer, bool on) {
  if (state.observers[observer].zombie == on) return;
  reactorActiveIs(observer, !on);
  state.observers[observer].zombie = on;
}

void PlainWorld::timerActiveIs(bool on) {
  PlainTimer& self = state.timers[0];
  if (self.active == on) return;
  self.active = on;
  if (!on) self.wasRegistered = self.registered;
  reachIf(on && !self.wasRegistered, Probe::timerStaysUnregistered);
  if (!on || self.wasRegistered) timerRegisteredIs(0, on);
}

void PlainWorld::timerZombieIs(bool on) {
  if (state.timers[0].zombie == on) return;
  timerActiveIs(!on);
  state.timers[0].zombie = on;
}

void PlainWorld::modeIs(int mode) {
  if (state.machine.mode == mode) return;
  state.machine.mode = mode;
  handleMode();
}

void PlainWorld::handleMode() {
  trace(2, 57, "handleMode", "void Hardware::Kest::Slice::KestSliceDmaSm::handleMode()");
  if (state.machine.mode != 2) return;
  reach(state.simulated ? Probe::pollNotArmedInSimulation : Probe::pollArmed);
  if (armsPoll(state.machine.mode)) state.timers[0].timeMin = now() + 2.0;
}

void PlainWorld::handleInitialized() {
  trace(2, 71, "handleInitialized",
        "void Hardware::Kest::Slice::KestSliceDmaSm::handleInitialized()");
  clockIs(static_cast<int>(state.managerClock));
  state.timers[0].timeMin = std::numeric_limits<double>::infinity();
}

/// A reactor passes on what concerns a collection, unless it is a zombie. It is asked even when it
/// has left the list, as long as the delivery is an older one.
void PlainWorld::reactorTold(unsigned observer, unsigned what, unsigned key) {
  if (what >= collectionCount) return;
  if (state.observers[observer].zombie) {
    reach(isOfPorts(what) ? Probe::machineSilentAboutPort : Probe::machineSilentAboutDevice);
    return;
  }
  static constexpr unsigned handlers[] = {0, 1, 1, 2, 3};
  reachIf(what == switchportModes && recorded(nativeVlans, key).entry != 0,
          Probe::modeChangeReprogramsVlan);
  handle(handlers[what], key);
}

}  // namespace Simulation
