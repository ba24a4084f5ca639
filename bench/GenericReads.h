#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "bench/Operations.h"
#include "bench/Run.h"

/// Row i: one attribute of a record that is known by its number or its name alone, of any type.
namespace Kest::Bench {

inline constexpr char const* attributeNames[] = {"ifName",       "destId",  "shadowIntfId",
                                                 "trafficClass", "devName", "fapNum",
                                                 "ctrl",         "hwLag",   "macAddr"};

/// What the first reader read in all; everybody else has to read the same.
inline std::uint64_t expectedSum = 0;

/// Reads a random attribute of one object after another. `read(object, attribute)` makes a number
/// of it: itself, 0 or 1 for a flag, its length for a string or an address.
template <class Object, class Attribute, class Read>
void readAttributes(Run& run, std::vector<Object> const& objects,
                    std::vector<Attribute> const& attributes, Read const& read) {
  std::mt19937_64 random(3);
  std::vector<unsigned> order(8191);
  for (unsigned& attribute : order) attribute = static_cast<unsigned>(random() % attributes.size());
  Cycle object(objects.size());
  Cycle step(order.size());
  run.repeat([&] { keep(read(objects[object.next()], attributes[order[step.next()]])); });

  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < objects.size(); ++i) sum += read(objects[i], attributes[order[i]]);
  if (expectedSum == 0) expectedSum = sum;
  if (sum != expectedSum) run.fail("something else was read");
}

}  // namespace Kest::Bench
