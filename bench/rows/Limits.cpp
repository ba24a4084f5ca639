#include <absl/hash/hash.h>

#include <bit>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "bench/Callee.h"
#include "bench/Operations.h"
#include "bench/Ours.h"
#include "bench/rows/Rows.h"
#include "model/detail/Collection.h"

/// What no implementation can go below: the parts that an operation cannot do without.
namespace Kest::Bench {

namespace {

constexpr std::size_t callees = 64;

/// A virtual call of one object after the other; with `ByValue`, one that takes its string as
/// observers do.
template <bool ByValue>
void callVirtually(Run& run) {
  std::vector<std::unique_ptr<Callee>> all;
  for (std::size_t i = 0; i < callees; ++i) all.push_back(newCallee());
  Mox::String8 const key("et3/12/1");
  for (auto _ : run) {
    for (auto const& callee : all) {
      if constexpr (ByValue) {
        callee->toldByValue(key);
      } else {
        callee->told(key);
      }
    }
  }
  run.operationsAre(callees);
}

/// A hash of a key's characters and one look into a table of twice as many places as there are
/// keys, without a comparison.
void probe(Run& run, std::size_t keyCount) {
  std::vector<std::string> keys;
  for (Port const& port : visited(portsOf({keyCount, 11}))) keys.push_back(port.ifName);
  std::vector<std::uint64_t> const table(std::bit_ceil(2 * keyCount), 1);
  absl::Hash<std::string_view> const hash;
  std::size_t at = 0;
  for (auto _ : run) {
    keep(table[hash(keys[at]) & (table.size() - 1)]);
    if (++at == keys.size()) at = 0;
  }
}

/// One allocation of an entry's size, and its release.
void allocate(Run& run) {
  using Entry = Hardware::Kest::Slice::KestSliceDmaConfig::MoxSwitchPort;
  for (auto _ : run) {
    void* const memory = std::malloc(sizeof(Entry));
    keep(memory);
    std::free(memory);
  }
}

/// One look at every byte of a record's text, as fast as the C library can: for one that is not
/// there.
void scan(Run& run) {
  std::vector<std::string> texts;
  for (Port const& port : visited(portsOf(shortNames))) {
    texts.emplace_back(valueToStrep(recordOf(port)).view());
  }
  std::size_t at = 0;
  for (auto _ : run) {
    keep(std::memchr(texts[at].data(), '\n', texts[at].size()));
    if (++at == texts.size()) at = 0;
  }
}

}  // namespace

void measureLimits() {
  measure("limit", "virtual call", "limit", callVirtually<false>);
  measure("limit", "virtual call, string by value", "limit", callVirtually<true>);
  for (std::size_t const keys : {shortNames.keys, manyShortNames.keys}) {
    measure("limit", "hash and probe@" + std::to_string(keys), "limit",
            [=](Run& run) { probe(run, keys); });
  }
  measure("limit", "allocation", "limit", allocate);
  measure("limit", "byte scan", "limit", scan);
}

}  // namespace Kest::Bench
