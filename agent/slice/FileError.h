#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Kest::Agent {

/// A place in a file that was refused, and why, as people read it:
///
///     FILE:LINE:COLUMN: what was found and what was expected
///       the line itself
///          ^
///
/// Of a very long line only the part around the column is shown.
class FileError : public std::runtime_error {
 public:
  /// @param line from 1
  /// @param column from 0, in bytes of `lineText`
  FileError(std::string_view file, std::size_t line, std::size_t column, std::string_view message,
            std::string_view lineText);
  /// @param at from 0, in bytes of the file's whole text
  static FileError inText(std::string_view file, std::string_view text, std::size_t at,
                          std::string_view message);
  /// A file that cannot be read at all.
  FileError(std::string_view file, std::string_view message);
};

}  // namespace Kest::Agent
