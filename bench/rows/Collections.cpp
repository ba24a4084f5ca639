#include "bench/peers/Collections.h"
#include "bench/Operations.h"
#include "bench/Ours.h"
#include "bench/rows/Rows.h"

namespace Kest::Bench {

namespace {

constexpr Shape deletedAtOnce{10000, 11};

using Maps = Among<Ours, Flat, Node, Unordered>;
using Observed = Among<Ours, Flat, UnorderedSignals2, UnorderedSigc>;

void measureLookups() {
  for (Shape const shape : {shortNames, longNames, manyShortNames, manyLongNames}) {
    Maps::each([&]<class Store> {
      measure("a", shape.text(), Store::name,
              [=](benchmark::State& state) { lookUp<Store>(state, shape); });
    });
  }
}

void measureWrites() {
  for (Shape const shape : {shortNames, longNames, manyShortNames, manyLongNames}) {
    Maps::each([&]<class Store> {
      measure("b", shape.text(), Store::name,
              [=](benchmark::State& state) { writeTheSame<Store>(state, shape); });
    });
  }
  for (std::size_t const observers : {0, 1, 8, 64}) {
    Observed::each([&]<class Store> {
      measure("c", "k=" + std::to_string(observers), Store::name,
              [=](benchmark::State& state) { update<Store>(state, shortNames, observers); });
    });
  }
}

void measureInsertionAndDeletion() {
  for (Shape const shape : {shortNames, longNames, manyShortNames, manyLongNames}) {
    Maps::each([&]<class Store> {
      measure("d", shape.text(), Store::name, [=](benchmark::State& state) {
        comeAndGo<Store>(state, shape, Measured::insertion);
      })->UseManualTime();
      measure("e", shape.text(), Store::name, [=](benchmark::State& state) {
        comeAndGo<Store>(state, shape, Measured::deletion);
      })->UseManualTime();
    });
  }
  Maps::each([&]<class Store> {
    measure("f", deletedAtOnce.text(), Store::name, [=](benchmark::State& state) {
      deleteAll<Store>(state, deletedAtOnce);
    })->UseManualTime();
  });
}

}  // namespace

void measureCollections() {
  measureLookups();
  measureWrites();
  measureInsertionAndDeletion();
}

}  // namespace Kest::Bench
