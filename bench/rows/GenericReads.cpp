#include <random>
#include <string>
#include <unordered_map>
#include <variant>

#include "bench/Operations.h"
#include "bench/Ours.h"
#include "bench/peers/Protobuf.h"
#include "bench/rows/Rows.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/MoxType.h"

/// Row i: one attribute of a record that is known by its number or its name alone, of any type.
namespace Kest::Bench {

namespace {

using Octets = std::array<std::uint8_t, 6>;

char const* const attributeNames[portFields] = {"ifName",       "destId",  "shadowIntfId",
                                                "trafficClass", "devName", "fapNum",
                                                "ctrl",         "hwLag",   "macAddr"};

/// Which attribute is read after which: a random order.
std::vector<unsigned> const& attributeOrder() {
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

Attributes attributesOf(Port const& port) {
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

std::vector<Attributes> variants() {
  std::vector<Attributes> all;
  for (Port const& port : visited(portsOf(shortNames))) all.push_back(attributesOf(port));
  return all;
}

std::vector<std::string> const& names() {
  static std::vector<std::string> const all(std::begin(attributeNames), std::end(attributeNames));
  return all;
}

std::uint64_t readVariant(Attributes const& record, std::string const& name) {
  return std::visit(NumberOf(), record.find(name)->second);
}

/// Reads `read(object, attribute)` of one object after the other.
template <class Object, class Attribute, class Read>
void readAttributes(benchmark::State& state, std::vector<Object> const& objects,
                    std::vector<Attribute> const& attributes, Read const& read) {
  static std::uint64_t const expected = sumOfReads(variants(), names(), readVariant);
  if (sumOfReads(objects, attributes, read) != expected) {
    state.SkipWithError("something else was read");
  }
  std::vector<unsigned> const& order = attributeOrder();
  std::size_t object = 0;
  std::size_t step = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(read(objects[object], attributes[order[step]]));
    if (++object == objects.size()) object = 0;
    if (++step == order.size()) step = 0;
  }
}

// Ours.

using Adapter = std::unique_ptr<Mox::GenericIf>;

std::vector<Adapter> adapters() {
  std::vector<Adapter> all;
  for (Ours::Record const& record : visitedRecords<Ours>(shortNames)) {
    all.push_back(Mox::genericOf(record));
  }
  return all;
}

std::uint64_t numberOf(Mox::GenericIf const& value) {
  if (auto const* number = Mox::genericVal<std::uint32_t>(&value)) return *number;
  if (auto const* text = Mox::genericVal<Mox::String8>(&value)) return text->bytes();
  if (auto const* flag = Mox::genericVal<bool>(&value)) return *flag ? 1 : 0;
  return Mox::genericVal<Pelk::EthAddr>(&value)->octets().size();
}

std::uint64_t readAdapter(Adapter const& record, Mox::AttributeId id) {
  Adapter result;
  record->attributeOp({id, Mox::AttributeOpCode::read, nullptr}, nullptr, result);
  return numberOf(*result);
}

void oursById(benchmark::State& state) {
  auto const records = adapters();
  std::vector<Mox::AttributeId> ids;
  for (char const* name : attributeNames) ids.push_back(records[0]->attributeId(name));
  readAttributes(state, records, ids, readAdapter);
}

void oursByName(benchmark::State& state) {
  auto const records = adapters();
  std::vector<Mox::String8> const strings(std::begin(attributeNames), std::end(attributeNames));
  readAttributes(state, records, strings, [](Adapter const& record, Mox::String8 const& name) {
    return readAdapter(record, record->attributeId(name));
  });
}

void variantsByName(benchmark::State& state) {
  readAttributes(state, variants(), names(), readVariant);
}

// protobuf's reflection.

std::vector<kest::bench::SwitchPort> messages() {
  std::vector<kest::bench::SwitchPort> all;
  for (Port const& port : visited(portsOf(shortNames))) all.push_back(messageOf(port));
  return all;
}

void reflectionById(benchmark::State& state) {
  std::vector<int> numbers;
  for (int number = 1; number <= static_cast<int>(portFields); ++number) numbers.push_back(number);
  readAttributes(state, messages(), numbers,
                 [](auto const& record, int number) { return readById(record, number); });
}

void reflectionByName(benchmark::State& state) {
  readAttributes(state, messages(), names(), [](auto const& record, std::string const& name) {
    return readByName(record, name);
  });
}

}  // namespace

void measureGenericReads() {
  measure("i", "by id", "ours", oursById);
  measure("i", "by id", "protobuf", reflectionById);
  measure("i", "by name", "ours", oursByName);
  measure("i", "by name", "variants", variantsByName);
  measure("i", "by name", "protobuf", reflectionByName);
}

}  // namespace Kest::Bench
