#pragma once

#include "bench/Operations.h"

/// Rows a to f: a keyed collection.
namespace Kest::Bench {

inline constexpr Shape deletedAtOnce{10000, 11};

template <class Store>
void measureLookups() {
  for (Shape const shape : {shortNames, longNames, manyShortNames, manyLongNames}) {
    measure("a", shape.text(), Store::name, [=](Run& run) { lookUp<Store>(run, shape); });
  }
}

template <class Store>
void measureWrites() {
  for (Shape const shape : {shortNames, longNames, manyShortNames, manyLongNames}) {
    measure("b", shape.text(), Store::name, [=](Run& run) { writeTheSame<Store>(run, shape); });
  }
}

template <class Store>
void measureUpdates() {
  for (std::size_t const observers : {0U, 1U, 8U, 64U}) {
    measure("c", "k=" + std::to_string(observers), Store::name,
            [=](Run& run) { update<Store>(run, shortNames, observers); });
  }
}

template <class Store>
void measureInsertionAndDeletion() {
  for (Shape const shape : {shortNames, longNames, manyShortNames, manyLongNames}) {
    measure(
        "d", shape.text(), Store::name,
        [=](Run& run) { comeAndGo<Store>(run, shape, Movement::insertion); }, Measured::part);
    measure(
        "e", shape.text(), Store::name,
        [=](Run& run) { comeAndGo<Store>(run, shape, Movement::deletion); }, Measured::part);
  }
  measure(
      "f", deletedAtOnce.text(), Store::name,
      [=](Run& run) { deleteAll<Store>(run, deletedAtOnce); }, Measured::part);
}

/// All but the updates, in which other stores are rivals than in the rest.
template <class Store>
void measureMap() {
  measureLookups<Store>();
  measureWrites<Store>();
  measureInsertionAndDeletion<Store>();
}

}  // namespace Kest::Bench
