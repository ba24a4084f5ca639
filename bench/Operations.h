#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/Run.h"
#include "bench/Workload.h"

/// How operations are measured, the same way for the library's own and for its rivals'. `Store` is
/// a keyed collection of one of them.
namespace Kest::Bench {

/// One thing for each port of a collection, in the visiting order; made once for each `make`, apart
/// from what stores hold.
template <class Thing>
std::vector<Thing> const& visitedOnce(Shape shape, Thing (*make)(Port const& port)) {
  static std::map<std::pair<Shape, Thing (*)(Port const&)>, std::vector<Thing>> all;
  auto& things = all[{shape, make}];
  if (things.empty()) {
    for (Port const& port : visited(portsOf(shape))) things.push_back(make(port));
  }
  return things;
}

/// The records of a collection: equal to those that a store holds.
template <class Store>
auto const& visitedRecords(Shape shape) {
  return visitedOnce<typename Store::Record>(shape, Store::record);
}

/// The same, each with a field changed.
template <class Store>
auto const& visitedChangedRecords(Shape shape) {
  return visitedOnce<typename Store::Record>(
      shape, [](Port const& port) { return Store::record(changed(port)); });
}

template <class Store>
auto const& visitedKeys(Shape shape) {
  return visitedOnce<typename Store::Key>(shape,
                                          [](Port const& port) { return Store::key(port.ifName); });
}

template <class Store>
void fill(Store& store, std::vector<Port> const& ports) {
  for (Port const& port : ports) store.put(Store::record(port));
}

/// A store of the collection, which no operation shrinks or grows for long. `Purpose` keeps
/// operations apart that leave the memory in different states.
template <class Store, class Purpose>
Store& filled(Shape shape) {
  static std::map<Shape, std::unique_ptr<Store>> stores;
  auto& store = stores[shape];
  if (!store) {
    store = std::make_unique<Store>();
    fill(*store, portsOf(shape));
  }
  return *store;
}

struct InPlace {};    // entries stay where they are
struct ComeAndGo {};  // entries go and come

/// Goes through indexes again and again.
class Cycle {
 public:
  explicit Cycle(std::size_t size) : size_(size) {}
  std::size_t next() {
    std::size_t const at = at_;
    if (++at_ == size_) at_ = 0;
    return at;
  }

 private:
  std::size_t size_;
  std::size_t at_ = 0;
};

/// A lookup, which returns a copy.
template <class Store>
void lookUp(Run& run, Shape shape) {
  Store const& store = filled<Store, InPlace>(shape);
  auto const& keys = visitedKeys<Store>(shape);
  auto const before = store.lookupCount();
  Cycle at(keys.size());
  run.repeat([&] { keep(store.lookup(keys[at.next()])); });
  bool const counted = store.lookupCount() - before == run.iterations();
  if (!counted || !(store.lookup(keys[0]) == visitedRecords<Store>(shape)[0])) {
    run.fail("a lookup was not counted, or did not find its record");
  }
}

/// A lookup by a key that was made from characters and never looked up before.
template <class Store>
void lookUpNew(Run& run, Shape shape) {
  Store const& store = filled<Store, InPlace>(shape);
  auto const& names = visitedOnce<std::string>(shape, [](Port const& port) { return port.ifName; });
  std::size_t const batch = std::min<std::size_t>(names.size(), 10000);
  auto const before = store.lookupCount();
  Cycle at(names.size());
  std::vector<typename Store::Key> keys;
  for (std::uint64_t i = 0; i < run.iterations(); ++i) {
    keys.clear();
    while (keys.size() < batch) keys.push_back(Store::key(names[at.next()]));
    run.part([&] {
      for (auto const& key : keys) keep(store.lookup(key));
    });
  }
  run.operationsAre(batch);
  bool const counted = store.lookupCount() - before == run.operations();
  std::size_t const last = (run.iterations() - 1) * batch % names.size();
  if (!counted || !(store.lookup(keys[0]) == visitedRecords<Store>(shape)[last])) {
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
  Cycle at(records.size());
  run.repeat([&] { store.put(records[at.next()]); });
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
  run.repeat([&] {
    store.put((*to)[at]);
    if (++at == to->size()) {
      at = 0;
      std::swap(to, from);
    }
  });
  expectTold(run, store, store.changeCount() - before, run.iterations());
  store.observersAre(0);
  for (auto const& record : visitedRecords<Store>(shape)) store.put(record);
}

enum class Movement { insertion, deletion };

/// Deletion of a batch of entries in the visiting order, and their insertion, one of which is
/// measured; one observer is told. A batch is a part of the collection, so that its size stays.
template <class Store>
void comeAndGo(Run& run, Shape shape, Movement measured) {
  Store& store = filled<Store, ComeAndGo>(shape);
  auto const& keys = visitedKeys<Store>(shape);
  auto const& records = visitedRecords<Store>(shape);
  std::size_t const batch = shape.keys <= 1000 ? shape.keys / 2 : shape.keys / 10;
  store.observersAre(1);
  auto const before = store.changeCount();
  std::size_t at = 0;
  for (std::uint64_t iteration = 0; iteration < run.iterations(); ++iteration) {
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

/// Deletion of all entries at once; one observer is told of each.
template <class Store>
void deleteAll(Run& run, Shape shape) {
  auto const& records = visitedRecords<Store>(shape);
  Store store;
  store.observersAre(1);
  for (std::uint64_t i = 0; i < run.iterations(); ++i) {
    for (auto const& record : records) store.put(record);
    run.part([&] { store.delAll(); });
  }
  expectTold(run, store, store.changeCount(), 2 * shape.keys * run.iterations());
  run.operationsAre(shape.keys);
}

/// Bytes of the heap that an entry takes, with what the allocator adds.
template <class Store>
void heapOfAnEntry(Run& run, Shape shape) {
  std::vector<Port> const ports = portsOf(shape);
  std::size_t const before = heapBytes();
  Store store;
  fill(store, ports);
  run.figureIs(static_cast<double>(heapBytes() - before) / static_cast<double>(ports.size()));
}

template <class Store>
void measureUpdates() {
  for (std::size_t const observers : {0U, 1U, 8U, 64U}) {
    measure("c", "k=" + std::to_string(observers), Store::name,
            [=](Run& run) { update<Store>(run, shortNames, observers); });
  }
}

/// All but the updates, which have other rivals.
template <class Store>
void measureMap() {
  auto const measureAs = [](char const* row, Shape shape, auto operation) {
    measure(row, shape.text(), Store::name, [=](Run& run) { operation(run, shape); });
  };
  for (Shape const shape : {shortNames, longNames, manyShortNames, manyLongNames}) {
    measureAs("a", shape, lookUp<Store>);
    measureAs("b", shape, writeTheSame<Store>);
    measureAs("d", shape,
              [](Run& run, Shape of) { comeAndGo<Store>(run, of, Movement::insertion); });
    measureAs("e", shape,
              [](Run& run, Shape of) { comeAndGo<Store>(run, of, Movement::deletion); });
  }
  for (Shape const shape : {manyShortNames, manyLongNames}) {
    measureAs("k", shape, heapOfAnEntry<Store>);
  }
  measureAs("f", Shape{10000}, deleteAll<Store>);
  for (std::size_t const keys : {1000U, 100000U}) {
    for (std::size_t const length : {6U, 11U}) {
      measureAs("n", Shape{keys, 11, length}, lookUpNew<Store>);
    }
  }
}

/// Prints or reads records: runs `work(input)` over one input of `make(port)` after another.
template <class Make, class Work>
void measureOver(char const* row, char const* who, Make make, Work work) {
  for (Shape const shape : {shortNames, longNames}) {
    measure(row, std::to_string(shape.nameLength), who, [=](Run& run) {
      std::vector<decltype(make(Port()))> inputs;
      for (Port const& port : visited(portsOf(shape))) inputs.push_back(make(port));
      Cycle at(inputs.size());
      run.repeat([&] { keep(work(inputs[at.next()])); });
    });
  }
}

}  // namespace Kest::Bench
