#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Files, read and replaced whole, or made longer. What is thrown is a `Mox::RangeException` that
/// begins with "PATH: ".
namespace Hardware::Kest::Sim {

constexpr std::size_t largestFile = std::size_t{64} << 20;  // bytes

/// Refuses what is larger than `largestFile`, and what is no regular file without waiting for it.
std::string readFile(std::string const& path);
/// None: there is no such file.
std::optional<std::string> readFileIfAny(std::string const& path);

/// The file has `text`, at most `largestFile`; whoever reads it meanwhile sees all of the old text
/// or all of the new. The text is first written beside it, to `path` and ".tmp".
///
/// A file that was there keeps its mode and, as far as the process may give it away, its owner and
/// group; without its group it lets the group do no more than others. A new one is for its owner
/// alone: who wants others to read it says so once.
void replaceFile(std::string const& path, std::string_view text);

/// Adds `text` at the end of a regular file of that size.
/// @return false: the file has another size or cannot be written; then it may end in a part of
/// `text`
bool appendToFile(std::string const& path, std::size_t bytes, std::string_view text);

}  // namespace Hardware::Kest::Sim
