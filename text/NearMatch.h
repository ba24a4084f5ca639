#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Text {

/// How many letters must be inserted, left out, replaced or swapped with their neighbour to make
/// one word of the other.
std::size_t editDistance(std::string_view a, std::string_view b);

/// The candidate that a mistyped name most likely means, the first of several that are as near: one
/// that differs in case alone or by one letter in three at most, or the only one that begins so.
std::optional<std::string> nearMatch(std::string_view name,
                                     std::vector<std::string> const& candidates);

}  // namespace Text
