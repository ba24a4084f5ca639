#include "bench/Operations.h"
#include "bench/Ours.h"
#include "bench/peers/Collections.h"
#include "bench/rows/Rows.h"

/// What operations cost as collections and lists of observers grow: `doc/growth.svg`. A variant is
/// the operation, `@`, and how many there are.
namespace Kest::Bench {

namespace {

constexpr std::size_t keyCounts[] = {10,    30,    100,    300,    1000,   3000,
                                     10000, 30000, 100000, 300000, 1000000};
constexpr std::size_t observerCounts[] = {0, 1, 2, 5, 10, 20, 50, 100, 200, 500, 1000};

std::string variant(char const* operation, std::size_t count) {
  return std::string(operation) + "@" + std::to_string(count);
}

template <class Store>
void measureGrowthOf() {
  for (std::size_t const keys : keyCounts) {
    Shape const shape{keys, 11};
    measure("growth", variant("lookup", keys), Store::name,
            [=](Run& run) { lookUp<Store>(run, shape); });
    measure("growth", variant("update", keys), Store::name,
            [=](Run& run) { update<Store>(run, shape, 1); });
    measure("growth", variant("delete and insert", keys), Store::name,
            [=](Run& run) { deleteAndInsert<Store>(run, shape); });
  }
  for (std::size_t const observers : observerCounts) {
    measure("growth", variant("observers", observers), Store::name,
            [=](Run& run) { update<Store>(run, shortNames, observers); });
  }
}

}  // namespace

void measureGrowth() {
  measureGrowthOf<Ours>();
  measureGrowthOf<Flat>();
}

}  // namespace Kest::Bench
