#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Files, read and written whole. What is thrown is a `Mox::RangeException` "PATH: cannot be ...:
/// REASON".
namespace Hardware::Kest::Sim {

std::string readFile(std::string const& path);
/// None: there is no such file.
std::optional<std::string> readFileIfAny(std::string const& path);

/// The file has `text`; whoever reads it meanwhile sees all of the old text or all of the new. The
/// text is first written beside it, to `path` and ".tmp".
void replaceFile(std::string const& path, std::string_view text);

}  // namespace Hardware::Kest::Sim
