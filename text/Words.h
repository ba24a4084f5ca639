#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Text {

/// The words with commas between them: "a, b or c".
/// @param last stands before the last word in place of a comma
std::string listed(std::vector<std::string> const& words, std::string_view last = " or ");

}  // namespace Text
