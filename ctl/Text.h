#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ctl/Json.h"

/// Text for people.
namespace Kest::Ctl {

/// Control characters as `\xHH`, so that a terminal shows what is there and does nothing else.
std::string escaped(std::string_view text);
/// The same, but for newlines.
std::string escapedLines(std::string_view text);
bool isUtf8(std::string_view text);
/// A value on one line; strings without quotation marks.
std::string shown(Json const& value);

/// A value on as many lines as it takes, each ended by a newline: objects with their names in
/// front, those in them indented.
std::string page(Json const& value);

/// Rows of cells under headings, in columns.
class Table {
 public:
  explicit Table(std::vector<std::string> headings) { add(std::move(headings)); }

  /// As many cells as there are headings.
  void add(std::vector<std::string> cells) { rows_.push_back({std::move(cells), {}}); }
  /// The last row's cell is to be noticed.
  void mark(std::size_t column) { rows_.back().marked.push_back(column); }

  /// @param colour whether headings and marks may be coloured
  std::string text(bool colour) const;

 private:
  struct Row {
    std::vector<std::string> cells;
    std::vector<std::size_t> marked;  // columns
  };
  std::vector<Row> rows_;
};

}  // namespace Kest::Ctl
