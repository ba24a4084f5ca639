#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "test/fuzz/Fuzz.h"
#include "test/support/Effort.h"

namespace {

/// The fuzzer of the hash map, which compares it with a plain ordered map, on random operations.
TEST(HashMapRandomTest, HoldsAndWalksWhatAPlainMapDoes) {
  for (int seed = 1; seed <= effort(200); ++seed) {
    std::mt19937 random(static_cast<unsigned>(seed));
    std::vector<std::uint8_t> operations(random() % 4000);
    for (std::uint8_t& one : operations) one = static_cast<std::uint8_t>(random());
    LLVMFuzzerTestOneInput(operations.data(), operations.size());
  }
}

}  // namespace
