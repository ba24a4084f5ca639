#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/Run.h"
#include "bench/Workload.h"

/// How the operations of a keyed collection are measured, the same way for the library's own
/// collection and for its rivals'. `Store` is one of them.
namespace Kest::Bench {

/// The records of a collection, as the store has them, in the visiting order: equal to those that
/// it holds, but made apart from them. They live as long as the process.
template <class Store>
std::vector<typename Store::Record> const& visitedRecords(Shape shape) {
  static std::map<Shape, std::vector<typename Store::Record>> all;
  auto& records = all[shape];
  if (records.empty()) {
    for (Port const& port : visited(portsOf(shape))) records.push_back(Store::record(port));
  }
  return records;
}

/// The same, each with a field changed.
template <class Store>
std::vector<typename Store::Record> const& visitedChangedRecords(Shape shape) {
  static std::map<Shape, std::vector<typename Store::Record>> all;
  auto& records = all[shape];
  if (records.empty()) {
    for (Port const& port : visited(portsOf(shape))) {
      records.push_back(Store::record(changed(port)));
    }
  }
  return records;
}

/// Their keys, made apart from them.
template <class Store>
std::vector<typename Store::Key> const& visitedKeys(Shape shape) {
  static std::map<Shape, std::vector<typename Store::Key>> all;
  auto& keys = all[shape];
  if (keys.empty()) {
    for (Port const& port : visited(portsOf(shape))) keys.push_back(Store::key(port.ifName));
  }
  return keys;
}

template <class Store>
void fill(Store& store, Shape shape) {
  for (Port const& port : portsOf(shape)) store.put(Store::record(port));
}

/// A store of the collection, which no operation shrinks or grows for long. `Purpose` keeps
/// operations apart that leave the memory in different states.
template <class Store, class Purpose>
Store& filled(Shape shape) {
  static std::map<Shape, std::unique_ptr<Store>> stores;
  auto& store = stores[shape];
  if (!store) {
    store = std::make_unique<Store>();
    fill(*store, shape);
  }
  return *store;
}

struct InPlace {};    // entries stay where they are
struct ComeAndGo {};  // entries go and come

/// A lookup, which returns a copy.
template <class Store>
void lookUp(Run& run, Shape shape) {
  Store const& store = filled<Store, InPlace>(shape);
  auto const& keys = visitedKeys<Store>(shape);
  auto const before = store.lookupCount();
  std::size_t at = 0;
  for (auto _ : run) {
    keep(store.lookup(keys[at]));
    if (++at == keys.size()) at = 0;
  }
  bool const counted = store.lookupCount() - before == run.iterations();
  if (!counted || !(store.lookup(keys[at]) == visitedRecords<Store>(shape)[at])) {
    run.fail("a lookup was not counted, or did not find its record");
  }
}

/// A write of the record that is there.
template <class Store>
void writeTheSame(Run& run, Shape shape) {
  Store& store = filled<Store, InPlace>(shape);
  auto const& records = visitedRecords<Store>(shape);
  store.observersAre(1);
  auto const before = store.changeCount();
  std::size_t at = 0;
  for (auto _ : run) {
    store.put(records[at]);
    if (++at == records.size()) at = 0;
  }
  if (store.changeCount() != before) run.fail("a write changed something");
  store.observersAre(0);
}

/// Fails a benchmark unless there were so many changes and each observer was told of each.
template <class Store>
void expectTold(Run& run, Store const& store, std::uint64_t changes, std::uint64_t expected) {
  bool told = changes == expected;
  for (auto const count : store.told()) told = told && count == expected;
  if (!told) run.fail("a change was not told");
}

/// A write that changes a field of a record that is there, told to so many observers.
template <class Store>
void update(Run& run, Shape shape, std::size_t observers) {
  Store& store = filled<Store, InPlace>(shape);
  auto const* to = &visitedChangedRecords<Store>(shape);
  auto const* from = &visitedRecords<Store>(shape);
  store.observersAre(observers);
  auto const before = store.changeCount();
  std::size_t at = 0;
  for (auto _ : run) {
    store.put((*to)[at]);
    if (++at == to->size()) {
      at = 0;
      std::swap(to, from);
    }
  }
  expectTold(run, store, store.changeCount() - before, run.iterations());
  store.observersAre(0);
  for (auto const& record : visitedRecords<Store>(shape)) store.put(record);
}

/// How many of a collection's entries go and come at once: enough to make the clock's own time
/// small, and not so many that another collection is measured.
inline std::size_t batchOf(Shape shape) {
  return shape.keys <= 1000 ? shape.keys / 2 : shape.keys / 10;
}

enum class Movement { insertion, deletion };

/// Deletion of a batch of entries in the visiting order, and their insertion, one of which is
/// measured; one observer is told.
template <class Store>
void comeAndGo(Run& run, Shape shape, Movement measured) {
  Store& store = filled<Store, ComeAndGo>(shape);
  auto const& keys = visitedKeys<Store>(shape);
  auto const& records = visitedRecords<Store>(shape);
  std::size_t const batch = batchOf(shape);
  store.observersAre(1);
  auto const before = store.changeCount();
  std::size_t at = 0;
  for (auto _ : run) {
    std::size_t const end = at + batch;
    auto const deletion = [&] {
      for (std::size_t i = at; i < end; ++i) keep(store.del(keys[i]));
    };
    auto const insertion = [&] {
      for (std::size_t i = at; i < end; ++i) store.put(records[i]);
    };
    if (measured == Movement::deletion) {
      run.part(deletion);
      insertion();
    } else {
      deletion();
      run.part(insertion);
    }
    at = end == keys.size() ? 0 : end;
  }
  expectTold(run, store, store.changeCount() - before, 2 * batch * run.iterations());
  store.observersAre(0);
  run.operationsAre(batch);
}

/// Deletion of an entry and its insertion, measured together, which few keys suffice for; one
/// observer is told of both.
template <class Store>
void deleteAndInsert(Run& run, Shape shape) {
  Store& store = filled<Store, ComeAndGo>(shape);
  auto const& keys = visitedKeys<Store>(shape);
  auto const& records = visitedRecords<Store>(shape);
  store.observersAre(1);
  auto const before = store.changeCount();
  std::size_t at = 0;
  for (auto _ : run) {
    keep(store.del(keys[at]));
    store.put(records[at]);
    if (++at == keys.size()) at = 0;
  }
  expectTold(run, store, store.changeCount() - before, 2 * run.iterations());
  store.observersAre(0);
}

/// Deletion of all entries at once; one observer is told of each.
template <class Store>
void deleteAll(Run& run, Shape shape) {
  auto const& records = visitedRecords<Store>(shape);
  Store store;
  store.observersAre(1);
  for (auto _ : run) {
    for (auto const& record : records) store.put(record);
    run.part([&] { store.delAll(); });
  }
  expectTold(run, store, store.changeCount(), 2 * shape.keys * run.iterations());
  run.operationsAre(shape.keys);
}

}  // namespace Kest::Bench
