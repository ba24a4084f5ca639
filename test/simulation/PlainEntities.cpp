#include <algorithm>

#include "test/simulation/PlainWorld.h"
#include "test/simulation/Values.h"

namespace Simulation {

/// A value as an operation returns it; a record with its key, so that a default shows.
std::string PlainWorld::valueText(unsigned collection, unsigned key, PlainCell const& cell) const {
  bool const isRecord = collection == switchPorts || collection == devices;
  if (!isRecord) return text(cell.number);
  std::string_view const name = cell.entry == 0 ? "" : keyName(collection, key).view();
  return text("'", name, "' ", cell.number);
}

void PlainWorld::set(unsigned entity, unsigned collection, unsigned key, std::int32_t number) {
  PlainCell& at = cell(entity, collection, key);
  if (at.entry != 0 && at.number == number) {
    reach(Probe::writeChangedNothing);
    return;
  }
  if (at.entry == 0) at.entry = ++state.entriesMade;
  at.number = number;
  changed(entity, collection, key);
}

void PlainWorld::insert(unsigned entity, unsigned collection, unsigned key, std::int32_t number) {
  PlainCell& at = cell(entity, collection, key);
  reachIf(at.entry != 0, Probe::entryReplaced);
  at = {number, ++state.entriesMade};
}

/// Returns the text of what the deletion returns.
std::string PlainWorld::erase(unsigned entity, unsigned collection, unsigned key) {
  PlainCell& at = cell(entity, collection, key);
  PlainCell const removed = at;
  at = PlainCell();
  if (removed.entry == 0) {
    reach(Probe::deleteOfAbsent);
  } else {
    PlainAnnouncement const& announced = state.announcement;
    reachIf(announced.entity == entity && announced.what == collection && announced.key == key,
            Probe::deletedWhatIsAnnounced);
    changed(entity, collection, key);
  }
  return valueText(collection, key, removed);
}

void PlainWorld::eraseAll(unsigned entity, unsigned collection) {
  std::uint32_t const before = state.entriesMade;
  for (unsigned const key : walkOf(collection)) {
    PlainCell const at = cell(entity, collection, key);
    reachIf(at.entry > before, Probe::delAllMeetsNewEntry);
    if (at.entry != 0) erase(entity, collection, key);
  }
}

void PlainWorld::sliceIdIs(unsigned entity, unsigned value) {
  PlainEntity& config = state.entities[entity];
  if (config.sliceId == value) return;
  config.sliceId = value;
  changed(entity, toldSliceId, 0);
}

void PlainWorld::changed(unsigned entity, unsigned what, unsigned key) {
  ++state.entities[entity].changes;
  deliver(entity, what, key);
}

/// Tells the observers that are listed now, in order. One that is released meanwhile is not told,
/// apart from the first, which cannot have been released yet.
void PlainWorld::deliver(unsigned entity, unsigned what, unsigned key) {
  if (bound() == static_cast<int>(entity)) {
    reachIf(!reactor().active && !reactor().zombie, Probe::machineSilentWhenInactive);
  }
  std::vector<std::uint8_t> const snapshot = state.entities[entity].listed;
  if (snapshot.empty()) return;
  Meanwhile const underWay(state.deliveries, state.deliveries + 1);
  reachIf(state.deliveries > 1, Probe::deliveryInsideDelivery);
  reachIf(what == toldZeroReferences, Probe::zeroReferencesTold);
  Meanwhile const announced(state.announcement, {entity, what, key});
  for (unsigned const observer : snapshot) hold(observer);
  for (std::size_t i = 0; i < snapshot.size(); ++i) {
    bool const released = i > 0 && state.observers[snapshot[i]].references == 1;
    reachIf(released, Probe::observerReleasedDuringDelivery);
    if (!released) tell(snapshot[i], entity, what, key);
    letGo(snapshot[i]);
  }
}

bool PlainWorld::isThere(PlainIterator const& iterator) {
  return iterator.entry != 0 &&
         cell(static_cast<unsigned>(iterator.entity), iterator.collection, iterator.key).entry ==
             iterator.entry;
}

void PlainWorld::showIterator(unsigned number) {
  PlainIterator const& iterator = state.iterators[number];
  if (iterator.entry == 0) {
    reach(Probe::iteratorEnded);
    line("iterator ", number, " at the end");
    return;
  }
  auto const name = keyName(iterator.collection, iterator.key).view();
  if (isThere(iterator)) {
    PlainCell const& at =
        cell(static_cast<unsigned>(iterator.entity), iterator.collection, iterator.key);
    line("iterator ", number, " at '", name, "' ", at.number);
  } else {
    line("iterator ", number, " at '", name, "', gone");
  }
}

/// Starts at the key that `iterator` names, or else at the first entry.
void PlainWorld::iterate(PlainIterator iterator, unsigned number) {
  auto const& cells =
      state.entities[static_cast<unsigned>(iterator.entity)].cells[iterator.collection];
  if (iterator.key < keyCount) {
    iterator.entry = cells[iterator.key].entry;
  } else {
    for (unsigned const key : walkOf(iterator.collection)) {
      if (cells[key].entry == 0) continue;
      iterator.key = key;
      iterator.entry = cells[key].entry;
      break;
    }
  }
  state.iterators[number] = iterator;
  showIterator(number);
}

void PlainWorld::step(unsigned number) {
  PlainIterator& iterator = state.iterators[number];
  if (iterator.entry != 0) {
    auto const& cells =
        state.entities[static_cast<unsigned>(iterator.entity)].cells[iterator.collection];
    std::uint32_t const here = cells[iterator.key].entry;
    reachIf(here == 0, Probe::iteratorResumedAfterDeletion);
    reachIf(here != 0 && here != iterator.entry, Probe::iteratorResumedAfterReplacement);
    auto const& walk = walkOf(iterator.collection);
    auto const* const at = std::find(walk.begin(), walk.end(), iterator.key);
    auto const* const next =
        std::find_if(at + 1, walk.end(), [&](unsigned key) { return cells[key].entry != 0; });
    iterator.entry = next == walk.end() ? 0 : cells[*next].entry;
    if (next != walk.end()) iterator.key = *next;
  }
  showIterator(number);
}

void PlainWorld::eraseAt(unsigned number) {
  PlainIterator const iterator = state.iterators[number];
  bool const there = isThere(iterator);
  reachIf(iterator.entry != 0 && !there, Probe::deleteByIteratorOfGone);
  line("returned ",
       there ? erase(static_cast<unsigned>(iterator.entity), iterator.collection, iterator.key)
             : valueText(iterator.collection, iterator.key, PlainCell()));
}

}  // namespace Simulation
