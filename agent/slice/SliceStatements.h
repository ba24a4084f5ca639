#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "agent/slice/SliceReader.h"

namespace Kest::Agent {

inline constexpr std::size_t longestStatement = std::size_t{64} << 10U;  // bytes of a line

/// Reads a slice in its text form: statements, one a line. It keeps no more of the text than a
/// line.
std::unique_ptr<SliceReader> statementReader(std::string_view name, SliceEnd end);

}  // namespace Kest::Agent
