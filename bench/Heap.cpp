#include <malloc.h>

#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>

#include "bench/Ours.h"
#include "bench/peers/Collections.h"

/// Row k, and what row b says of allocations: counted, not timed. Prints JSON.

namespace {

std::size_t allocations = 0;

}  // namespace

// In the place of the C library's, for the whole program.

extern "C" {

void* __libc_malloc(std::size_t bytes);                     // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t bytes);  // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, std::size_t bytes);      // NOLINT(bugprone-reserved-identifier)

__attribute__((visibility("default"))) void* malloc(std::size_t bytes) noexcept {
  ++allocations;
  return __libc_malloc(bytes);
}

__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t bytes) noexcept {
  ++allocations;
  return __libc_calloc(count, bytes);
}

__attribute__((visibility("default"))) void* realloc(void* memory, std::size_t bytes) noexcept {
  ++allocations;
  return __libc_realloc(memory, bytes);
}

}  // extern "C"

namespace Kest::Bench {

namespace {

/// Bytes of the heap that are taken, with what the allocator adds.
std::size_t heapBytes() {
  auto const info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

template <class Store>
void fill(Store& store, std::vector<Port> const& ports) {
  for (Port const& port : ports) store.put(Store::record(port));
}

template <class Store>
double heapPerEntry(std::vector<Port> const& ports) {
  std::size_t const before = heapBytes();
  Store store;
  fill(store, ports);
  return static_cast<double>(heapBytes() - before) / static_cast<double>(ports.size());
}

template <class Store>
double allocationsPerUnchangedWrite(Shape shape) {
  std::vector<Port> const ports = portsOf(shape);
  std::vector<typename Store::Record> records;
  for (Port const& port : ports) records.push_back(Store::record(port));
  Store store;
  fill(store, ports);
  store.observersAre(1);
  std::size_t const before = allocations;
  for (auto const& record : records) store.put(record);
  return static_cast<double>(allocations - before) / static_cast<double>(records.size());
}

void print(char const* row, std::string const& variant, char const* who, double value,
           char const* unit) {
  static char const* separator = "";
  std::printf("%s\n  {\"name\": \"%s/%s/%s\", \"value\": %g, \"unit\": \"%s\"}", separator, row,
              variant.c_str(), who, value, unit);
  separator = ",";
}

template <class Store>
void count() {
  for (Shape const shape : {manyShortNames, manyLongNames}) {
    print("k", shape.text(), Store::name, heapPerEntry<Store>(portsOf(shape)), "bytes");
  }
  print("b", "allocations", Store::name, allocationsPerUnchangedWrite<Store>(longNames), "calls");
}

}  // namespace

}  // namespace Kest::Bench

int main() {
  using namespace Kest::Bench;
  std::printf("[");
  count<Ours>();
  count<Flat>();
  count<Node>();
  count<Unordered>();
  std::printf("\n]\n");
}
