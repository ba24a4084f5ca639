#include "test/simulation/PlainWorld.h"

#include "test/simulation/Values.h"

namespace Simulation {

PlainWorld::PlainWorld(Probes& probes) : probes_(probes) {
  state.places.fill(nobody);
}

void PlainWorld::take(Event const& event) {
  try {
    takeNow(event);
  } catch (Thrown const&) {
    line("threw");
  }
}

void PlainWorld::takeNow(Event const& event) {
  if (event.planner >= 0) {
    state.plans.add(event);
  } else if (makesSense(event)) {
    carriedOut.push_back(event.id);
    carryOut(event);
  }
}

void PlainWorld::planned(unsigned place) {
  auto const plan = state.plans.told(place);
  if (!plan) return;
  if (plan->op != Op::pass) takeNow(*plan);  // time passes between events
  if (plan->throws) throw Thrown();
}

/// A machine is not dropped in the middle of a handler: it would live on until that returns, beside
/// the next.
bool PlainWorld::makesSense(Event const& event) const {
  if (event.op == Op::machine) return state.handlers == 0;
  return event.op < Op::machineDrop || (state.machine.exists && machineMakesSense(event));
}

bool PlainWorld::machineMakesSense(Event const& event) const {
  bool const direct = !isByName(event);
  bool const hasTimer = state.timers[0].held;
  switch (event.op) {
    case Op::machineDrop:
      return state.handlers == 0;
    case Op::reactor:
      return event.flag(1) ? hasTimer : isBound();
    case Op::handle:
    case Op::verify:
      return isBound() || !direct;
    case Op::mode:
    case Op::poll:
    case Op::handleMode:
      return hasTimer || !direct;
    default:
      return true;
  }
}

void PlainWorld::carryOut(Event const& event) {
  if (isOfObserver(event.op)) return carryOutOnObserver(event);
  if (isOfDriver(event.op)) return state.driver.carryOut(event);
  switch (event.op) {
    case Op::pass:
      return pass(event[0]);
    case Op::wall:
      state.wall += event[0];
      return;
    case Op::retry:
      state.retrySeconds = event[0];
      return;
    case Op::environment:
      state.simulated = event.flag(0);
      return;
    case Op::signal:
      state.signalIgnored = event.flag(0);
      return;
    case Op::timer: {
      unsigned const timer = 1 + event.index(0);
      newTimer(timer, event.index(1));
      state.timers[timer].timeMin = now() + static_cast<double>(event[2]) / 1e6;
      return;
    }
    case Op::timerDrop:
      return dropTimer(1 + event.index(0));
    case Op::trace:
      state.traceLevels = traceLevels[event.index(0)].bits;
      return;
    case Op::threadSafe:
      return;  // nothing shows
    case Op::managerClock:
      state.managerClock = event.index(0);
      return;
    default:
      return event.op < Op::machine ? carryOutOnEntity(event) : carryOutOnMachine(event);
  }
}

void PlainWorld::carryOutOnEntity(Event const& event) {
  unsigned const entity = event.index(0);
  unsigned const collection = event.index(1);
  unsigned const key = event.index(2);
  bool const changes = event.op <= Op::insert && event.op != Op::notify;
  if (changes && !isConfig(entity)) state.strange = true;
  switch (event.op) {
    case Op::set:
      return set(entity, collection, key, numberOf(entity, collection, event.index(3)));
    case Op::del:
    case Op::delAt:
      return line("returned ", erase(entity, collection, key));
    case Op::delAll:
      return eraseAll(entity, collection);
    case Op::notify:
      return deliver(entity, collection, key);
    case Op::insert:
      return insert(entity, collection, key, numberOf(entity, collection, event.index(3)));
    case Op::lookup:
      return line("returned ", valueText(collection, key, cell(entity, collection, key)));
    case Op::sliceId:
      return sliceIdIs(entity % configCount, collection % 3);
    case Op::zeroReferences:
      return deliver(entity, toldZeroReferences, 0);
    case Op::iterate:
      return iterate({.entity = event[1], .collection = key, .key = keyCount}, entity);
    case Op::iterateAt:
      return iterate({.entity = event[1], .collection = key, .key = event.index(3)}, entity);
    case Op::step:
      return step(entity);
    default:
      return eraseAt(entity);
  }
}

void PlainWorld::carryOutOnMachine(Event const& event) {
  auto const config = [&] { return event.index(0) < configCount ? event[0] : nobody; };
  auto const needs = [&](bool bound, Probe probe, char const* name) {
    if (bound) return true;
    reach(probe);
    line("refused: no '", name, "' is bound");
    return false;
  };
  auto const needsConfig = [&] {
    return needs(isBound(), Probe::handlerRefusedWithoutConfig, "config");
  };
  auto const needsTimer = [&] {
    return needs(state.timers[0].held, Probe::handlerRefusedWithoutTimer, "stateTimer");
  };
  switch (event.op) {
    case Op::machine:
      for (unsigned c = 0; event.flag(2) && c < collectionCount; ++c) {
        eraseAll(configCount + event.index(1), c);
      }
      return newMachine(config(), configCount + event.index(1));
    case Op::machineDrop:
      return dropMachine();
    case Op::config:
      if (!isByName(event)) return configIs(config());
      if (config() == nobody) return configDel();
      return line("refused: 'config' does not support operation 128");
    case Op::configDel:
      return configDel();
    case Op::clock:
      return clockIs(event.index(0) < clockCount ? event[0] : nobody);
    case Op::clockDel:
      return clockDel();
    case Op::mode:
      if (event[0] == state.machine.mode || !armsPoll(event[0]) || needsTimer()) modeIs(event[0]);
      return;
    case Op::active:
      return activeIs(event.flag(0));
    case Op::zombie:
      return zombieIs(event.flag(0));
    case Op::reactor:
      if (event.flag(1)) return timerRegisteredIs(0, event.flag(0));
      return registeredIs(static_cast<unsigned>(state.machine.reactor), event.flag(0));
    case Op::initialized:
      return handleInitialized();
    case Op::handle:
      if (needsConfig()) handle(event.index(0), event.index(1));
      return;
    case Op::verify:
      if (needsConfig()) doVerify();
      return;
    case Op::poll:
      if (needsTimer()) handleTimerExpired();
      return;
    default:
      if (!armsPoll(state.machine.mode) || needsTimer()) handleMode();
      return;
  }
}

std::string PlainWorld::disagreement() const {
  if (!state.machine.exists || state.strange) return {};
  for (unsigned key = 0; key < keyCount; ++key) {
    Driver::Interface const& interface = state.driver.interface(key);
    bool const created = recorded(switchPorts, key).number == 1;
    if (created && !interface.exists) {
      return text("the driver lacks created port '", keyName(switchPorts, key).view(), "'");
    }
    PlainCell const& vlan = recorded(nativeVlans, key);
    if (created && vlan.entry != 0 && vlan.number != interface.vlan) {
      return text("the driver has another VLAN for '", keyName(switchPorts, key).view(), "'");
    }
    std::int32_t const expected = recorded(deviceStates, key).number;
    if (expected != 0 && (expected == 1) != state.driver.device(key).left) {
      return text("the driver left '", keyName(devices, key).view(), "' in another state");
    }
  }
  return {};
}

}  // namespace Simulation
