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
      // This machine has not done what another one recorded.
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
  if (!isBound()) return;
  reachIf(state.handlers > 0, Probe::configUnboundInsideHandler);
  reactionZombieIs(reactor(), true);
  letGo(static_cast<unsigned>(std::exchange(state.machine.reactor, nobody)));
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
  bool const wasBound = isBound();
  if (wasBound) {
    reachIf(!reactor().active, Probe::configReboundWhileInactive);
    reachIf(state.deliveries > 0 && state.handlers == 0, Probe::configReboundDuringDelivery);
    reachIf(state.handlers > 0, Probe::configReboundInsideHandler);
  } else {
    machine.reactor = static_cast<int>(newObserver(nobody));
    reachIf(machine.zombie, Probe::machineBoundAsZombie);
  }
  auto const observer = static_cast<unsigned>(machine.reactor);
  notifierIs(observer, config);
  if (!wasBound) registeredIs(observer, true);
  reactionZombieIs(reactor(), machine.zombie);
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
      reachIf(!timer.zombie, Probe::pollAtOnceByMovedTimer);
      if (!timer.zombie) handleTimerExpired();
    } catch (Thrown const&) {
      timerRegisteredIs(0, true);
      throw;
    }
    timerRegisteredIs(0, true);
  } else {
    newTimer(0, static_cast<unsigned>(clock));
  }
  reactionZombieIs(state.timers[0], state.machine.zombie);
}

void PlainWorld::clockDel() {
  PlainTimer const& timer = state.timers[0];
  std::string const observed = timer.held ? text("clock", timer.notifier) : "none";
  dropTimer(0);
  line("returned ", observed);
}

void PlainWorld::activeIs(bool on) {
  if (state.machine.active == on) return;
  state.machine.active = on;
  if (isBound()) reactionActiveIs(reactor(), on);
  if (state.timers[0].held) reactionActiveIs(state.timers[0], on);
}

void PlainWorld::zombieIs(bool on) {
  if (state.machine.zombie == on) return;
  if (isBound()) reactionZombieIs(reactor(), on);
  if (state.timers[0].held) reactionZombieIs(state.timers[0], on);
  state.machine.zombie = on;
}

/// @param self the machine's reactor or its timer
void PlainWorld::reactionActiveIs(PlainReaction& self, bool on) {
  if (self.active == on) return;
  self.active = on;
  if (!on) self.wasRegistered = self.registered;
  bool const isTimer = &self == &state.timers[0];
  if (on && !self.wasRegistered) {
    reach(isTimer ? Probe::timerStaysUnregistered : Probe::reactorStaysUnregistered);
  } else if (isTimer) {
    timerRegisteredIs(0, on);
  } else {
    registeredIs(static_cast<unsigned>(state.machine.reactor), on);
  }
}

void PlainWorld::reactionZombieIs(PlainReaction& self, bool on) {
  if (self.zombie == on) return;
  reactionActiveIs(self, !on);
  self.zombie = on;
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

/// A reactor passes on changes of collections, unless it is a zombie. A delivery that began before
/// the reactor left the list still tells it.
void PlainWorld::reactorTold(unsigned observer, unsigned what, unsigned key) {
  if (what >= collectionCount) return;
  if (state.observers[observer].zombie) {
    reach(isOfPorts(what) ? Probe::zombieMachineSilentAboutPort
                          : Probe::zombieMachineSilentAboutDevice);
    return;
  }
  static constexpr unsigned handlers[] = {0, 1, 1, 2, 3};
  reachIf(what == switchportModes && recorded(nativeVlans, key).entry != 0,
          Probe::modeChangeReprogramsVlan);
  handle(handlers[what], key);
}

}  // namespace Simulation
