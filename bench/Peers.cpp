#include <absl/container/flat_hash_map.h>

#include <memory>
#include <stdexcept>
#include <unordered_map>
#include <variant>

#include "bench/GenericReads.h"
#include "bench/Operations.h"
#include "bench/Ours.h"
#include "bench/peers/CallbackList.h"
#include "bench/peers/MapStore.h"
#include "bench/peers/Signals.h"
#include "bench/peers/Texts.h"
#include "platform/mox/Strep.h"

namespace Kest::Bench {

namespace {

// What users would otherwise build the collection on.
struct Flat : MapStore<absl::flat_hash_map<std::string, Port>, CallbackList> {
  static constexpr char const* name = "flat";
};

struct Unordered : MapStore<std::unordered_map<std::string, Port>, CallbackList> {
  static constexpr char const* name = "unordered";
};

struct UnorderedSignals2 : MapStore<std::unordered_map<std::string, Port>, BoostSignal> {
  static constexpr char const* name = "signals2";
};

/// A record as a map of variants.
using Attributes =
    std::unordered_map<std::string,
                       std::variant<std::uint32_t, bool, std::string, std::array<std::uint8_t, 6>>>;

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

void readVariants(Run& run) {
  std::vector<Attributes> records;
  for (Port const& port : visited(portsOf(shortNames))) records.push_back(attributesOf(port));
  std::vector<std::string> const names(std::begin(attributeNames), std::end(attributeNames));
  readAttributes(run, records, names, [](Attributes const& record, std::string const& name) {
    return std::visit(NumberOf(), record.find(name)->second);
  });
}

/// The record as JSON, with bytes after it that simdjson may read.
std::string paddedJsonOf(Port const& port) {
  std::string json = jsonOf(port);
  json.reserve(json.size() + SimdJsonReader::padding());
  return json;
}

/// Rivals that print or read something else would be measured in vain.
void expectSameWork() {
  SimdJsonReader simdJson;
  for (Port const& port : portsOf(shortNames)) {
    auto const text = valueToStrep(recordOf(port));
    std::string const json = paddedJsonOf(port);
    bool const isSame = fmtPrinted(port) == text.view() && simdJson.read(json) == port &&
                        Mox::strepToValue<Ours::Record>(text) == recordOf(port);
    if (!isSame) throw std::logic_error("not the same record: " + json);
  }
}

}  // namespace

void measurePeers() {
  expectSameWork();
  measureMap<Flat>();
  measureMap<Unordered>();
  measureUpdates<Flat>();
  measureUpdates<UnorderedSignals2>();
  measureOver(
      "g", "fmt", [](Port const& port) { return port; }, fmtPrinted);
  measureOver("h", "simdjson", paddedJsonOf,
              [reader = std::make_shared<SimdJsonReader>()](std::string const& json) {
                return reader->read(json);
              });
  measure("i", "by name", "variants", readVariants);
}

}  // namespace Kest::Bench
