#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "bench/Run.h"
#include "bench/Workload.h"

/// Row i: one attribute of a record that is known by its number or its name alone, of any type.
namespace Kest::Bench {

using Octets = std::array<std::uint8_t, 6>;

inline constexpr char const* attributeNames[portFields] = {
    "ifName", "destId", "shadowIntfId", "trafficClass", "devName",
    "fapNum", "ctrl",   "hwLag",        "macAddr"};

/// Which attribute is read after which: a random order.
inline std::vector<unsigned> const& attributeOrder() {
  static std::vector<unsigned> const order = [] {
    std::mt19937_64 random(3);
    std::vector<unsigned> all(8191);
    for (unsigned& attribute : all) attribute = static_cast<unsigned>(random() % portFields);
    return all;
  }();
  return order;
}

/// A record as a map of variants: a rival, and what all of them are compared with.
using Attributes =
    std::unordered_map<std::string, std::variant<std::uint32_t, bool, std::string, Octets>>;

inline Attributes attributesOf(Port const& port) {
  return {{"ifName", port.ifName},
          {"destId", port.destId},
          {"shadowIntfId", port.shadowIntfId},
          {"trafficClass", port.trafficClass},
          {"devName", port.devName},
          {"fapNum", port.fapNum},
          {"ctrl", port.ctrl},
          {"hwLag", port.hwLag},
          {"macAddr", port.macAddr}};
}

struct NumberOf {
  std::uint64_t operator()(std::uint32_t number) const { return number; }
  std::uint64_t operator()(bool flag) const { return flag ? 1 : 0; }
  std::uint64_t operator()(auto const& bytes) const { return bytes.size(); }
};

/// What the first reads of a run sum up to.
template <class Object, class Attribute, class Read>
std::uint64_t sumOfReads(std::vector<Object> const& objects,
                         std::vector<Attribute> const& attributes, Read const& read) {
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    sum += read(objects[i], attributes[attributeOrder()[i]]);
  }
  return sum;
}

inline std::vector<Attributes> variants() {
  std::vector<Attributes> all;
  for (Port const& port : visited(portsOf(shortNames))) all.push_back(attributesOf(port));
  return all;
}

inline std::vector<std::string> const& names() {
  static std::vector<std::string> const all(std::begin(attributeNames), std::end(attributeNames));
  return all;
}

inline std::uint64_t readVariant(Attributes const& record, std::string const& name) {
  return std::visit(NumberOf(), record.find(name)->second);
}

/// Reads `read(object, attribute)` of one object after the other.
template <class Object, class Attribute, class Read>
void readAttributes(Run& run, std::vector<Object> const& objects,
                    std::vector<Attribute> const& attributes, Read const& read) {
  static std::uint64_t const expected = sumOfReads(variants(), names(), readVariant);
  std::vector<unsigned> const& order = attributeOrder();
  std::size_t object = 0;
  std::size_t step = 0;
  for (auto _ : run) {
    keep(read(objects[object], attributes[order[step]]));
    if (++object == objects.size()) object = 0;
    if (++step == order.size()) step = 0;
  }
  if (sumOfReads(objects, attributes, read) != expected) run.fail("something else was read");
}

}  // namespace Kest::Bench
