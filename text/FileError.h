#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Text {

/// A place in a line of a file, with as much of the line as people want to see.
class Place {
 public:
  /// @param line from 1
  /// @param column from 0, in bytes of `lineText`
  Place(std::size_t line, std::size_t column, std::string_view lineText);
  /// @param at from 0, in bytes of the file's whole text
  static Place inText(std::string_view text, std::size_t at);

  /// `FILE:LINE:COLUMN: message`, both counted from 1.
  std::string headline(std::string_view file, std::string_view message) const;
  /// The same, and the line with a caret. Of a very long line only the part around the column is
  /// shown:
  ///
  ///     FILE:LINE:COLUMN: what was expected and what was found
  ///       the line itself
  ///          ^
  std::string report(std::string_view file, std::string_view message) const;

 private:
  std::size_t line_;
  std::size_t column_;
  std::string excerpt_;
  std::size_t excerptColumn_;
};

/// Why a file was refused, as people read it.
class FileError : public std::runtime_error {
 public:
  /// "FILE: message"
  FileError(std::string_view file, std::string_view message);
  /// The report of the place.
  FileError(std::string_view file, Place const& place, std::string_view message);
};

}  // namespace Text
