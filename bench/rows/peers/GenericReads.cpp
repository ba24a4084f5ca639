#include "bench/rows/GenericReads.h"

#include "bench/peers/Protobuf.h"
#include "bench/rows/Rows.h"

namespace Kest::Bench {

namespace {

void variantsByName(Run& run) {
  readAttributes(run, variants(), names(), readVariant);
}

// protobuf's reflection.

std::vector<kest::bench::SwitchPort> messages() {
  std::vector<kest::bench::SwitchPort> all;
  for (Port const& port : visited(portsOf(shortNames))) all.push_back(messageOf(port));
  return all;
}

void reflectionById(Run& run) {
  std::vector<int> numbers;
  for (int number = 1; number <= static_cast<int>(portFields); ++number) numbers.push_back(number);
  readAttributes(run, messages(), numbers,
                 [](auto const& record, int number) { return readById(record, number); });
}

void reflectionByName(Run& run) {
  readAttributes(run, messages(), names(), [](auto const& record, std::string const& name) {
    return readByName(record, name);
  });
}

}  // namespace

void measureTheirGenericReads() {
  measure("i", "by id", "protobuf", reflectionById);
  measure("i", "by name", "variants", variantsByName);
  measure("i", "by name", "protobuf", reflectionByName);
}

}  // namespace Kest::Bench
