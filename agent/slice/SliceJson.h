#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "agent/slice/SliceReader.h"

namespace Kest::Agent {

inline constexpr std::size_t largestJsonSlice = std::size_t{64} << 20U;  // bytes

/// Reads a slice in its JSON form. What is refused is named by its JSON pointer too. The text is
/// parsed in one go, after its last byte.
std::unique_ptr<SliceReader> jsonSliceReader(std::string_view name, SliceEnd end);

}  // namespace Kest::Agent
