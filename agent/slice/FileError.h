#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Kest::Agent {

/// A place in a line of a file, with as much of the line as people want to see.
class FilePlace {
 public:
  /// @param line from 1
  /// @param column from 0, in bytes of `lineText`
  FilePlace(std::size_t line, std::size_t column, std::string_view lineText);

  /// `FILE:LINE:COLUMN: message`, and the line with a caret.
  std::string report(std::string_view file, std::string_view message) const;

 private:
  std::size_t line_;
  std::size_t column_;
  std::string excerpt_;
  std::size_t excerptColumn_;
};

/// A place in a file that was refused, and why, as people read it:
///
///     FILE:LINE:COLUMN: what was found and what was expected
///       the line itself
///          ^
///
/// Of a very long line only the part around the column is shown.
class FileError : public std::runtime_error {
 public:
  FileError(std::string_view file, FilePlace const& place, std::string_view message);
  /// @param at from 0, in bytes of the file's whole text
  static FileError inText(std::string_view file, std::string_view text, std::size_t at,
                          std::string_view message);
  /// A file that cannot be read at all.
  FileError(std::string_view file, std::string_view message);
};

}  // namespace Kest::Agent
