#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The files of the simulated slice: regular, of a bounded size.
namespace Hardware::Kest::Sim {

constexpr std::size_t largestFile = std::size_t{64} << 20;  // bytes

/// @throw Mox::RangeException "PATH: ..." when it cannot be read, or is larger than `largestFile`
std::string readFile(std::string const& path);
/// The same; none: there is no such file.
std::optional<std::string> readFileIfAny(std::string const& path);

/// Adds `text` at the end of a regular file of that size.
/// @return false: the file has another size or cannot be written; then it may end in a part of
/// `text`
bool appendToFile(std::string const& path, std::size_t bytes, std::string_view text);

}  // namespace Hardware::Kest::Sim
