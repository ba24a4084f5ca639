#include <algorithm>
#include <cstdlib>

#include "test/simulation/PlainWorld.h"
#include "test/simulation/Values.h"

namespace Simulation {

namespace {

/// The attribute's number in that entity.
unsigned attributeOf(unsigned entity, unsigned what) {
  if (what == toldZeroReferences) return 5;
  if (what == toldSliceId) return 258;
  return (isConfig(entity) ? 259 : 258) + what;
}

bool observesConfigs(int place) {
  return place < static_cast<int>(configObserverCount);
}

}  // namespace

unsigned PlainWorld::newObserver(int place) {
  auto const free = std::find_if(state.observers.begin(), state.observers.end(),
                                 [](PlainObserver const& one) { return one.references == 0; });
  if (free == state.observers.end()) std::abort();  // plans are few, so there cannot be so many
  *free = PlainObserver();
  free->references = 1;
  free->place = place;
  return static_cast<unsigned>(free - state.observers.begin());
}

void PlainWorld::letGo(unsigned observer) {
  PlainObserver& self = state.observers[observer];
  if (self.references == 1) registeredIs(observer, false);
  --self.references;
}

void PlainWorld::listedIs(unsigned observer, bool on) {
  int const entity = state.observers[observer].notifier;
  if (entity == nobody) return;
  auto& listed = state.entities[static_cast<unsigned>(entity)].listed;
  if (on) {
    listed.push_back(static_cast<std::uint8_t>(observer));
  } else {
    std::erase(listed, observer);
  }
}

void PlainWorld::registeredIs(unsigned observer, bool on) {
  PlainObserver& self = state.observers[observer];
  if (self.registered == on) return;
  self.registered = on;
  listedIs(observer, on);
  if (state.deliveries == 0 || self.notifier == nobody) return;
  reach(on ? Probe::observerJoinedDuringDelivery : Probe::observerLeftDuringDelivery);
}

void PlainWorld::notifierIs(unsigned observer, int entity) {
  PlainObserver& self = state.observers[observer];
  if (self.notifier == entity) return;
  if (self.registered) listedIs(observer, false);
  self.notifier = entity;
  if (self.registered) listedIs(observer, true);
  reachIf(state.deliveries > 0 && self.registered, Probe::observerMovedDuringDelivery);
}

void PlainWorld::tell(unsigned observer, unsigned entity, unsigned what, unsigned key) {
  try {
    told(observer, what, key);
    return;
  } catch (Thrown const&) {
  }
  try {
    toldException(observer, attributeOf(entity, what));
  } catch (Thrown const&) {
    reach(Probe::observerThrewOnReport);
  }
}

void PlainWorld::told(unsigned observer, unsigned what, unsigned key) {
  PlainObserver const& self = state.observers[observer];
  if (self.place == nobody) {
    reactorTold(observer, what, key);
    return;
  }
  auto const place = static_cast<unsigned>(self.place);
  reachIf(state.places[place] != static_cast<int>(observer),
          Probe::observerToldByInnerDeliveryThoughReleased);
  std::string about;
  if (what < collectionCount) about = text(" '", keyName(what, key).view(), "'");
  if (self.notifier == nobody) {
    about += " of nothing";
  } else if (what < collectionCount) {
    PlainCell const& at = cell(static_cast<unsigned>(self.notifier), what, key);
    about += text(" of ", entityNames[self.notifier], at.entry == 0 ? " none" : " ");
    if (at.entry != 0) about += text(at.number);
  }
  line("observer ", place, " told: ", collectionNames[what], about);
  planned(place);
}

void PlainWorld::toldException(unsigned observer, unsigned attribute) {
  PlainObserver const& self = state.observers[observer];
  if (self.place == nobody) {
    reach(Probe::handlerThrew);
    return;
  }
  reach(Probe::observerThrew);
  line("observer ", self.place, " told: exception ", attribute);
  planned(static_cast<unsigned>(self.place));
}

void PlainWorld::carryOutOnObserver(Event const& event) {
  unsigned const place = event.index(0);
  int& held = state.places[place];
  auto const pointed = [&] {
    auto const entity = event.index(1);
    bool const fits = entity < entityCount && isConfig(entity) == observesConfigs(event[0]);
    reachIf(entity < entityCount && !fits, Probe::observerOfOtherType);
    return fits ? static_cast<int>(entity) : nobody;
  };
  if (event.op == Op::renew || event.op == Op::drop) {
    int const old = held;
    held = event.op == Op::renew ? static_cast<int>(newObserver(event[0])) : nobody;
    if (old != nobody) letGo(static_cast<unsigned>(old));
    if (event.op == Op::drop) return;
    notifierIs(static_cast<unsigned>(held), pointed());
    registeredIs(static_cast<unsigned>(held), true);
  } else if (held != nobody) {
    auto const observer = static_cast<unsigned>(held);
    if (event.op == Op::point) {
      notifierIs(observer, pointed());
    } else {
      registeredIs(observer, event.op == Op::join);
    }
  }
}

}  // namespace Simulation
