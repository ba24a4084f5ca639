#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Text {

/// Whether people are to notice something, and as what.
enum class Mark { none, heading, good, bad };

/// The text in the colour of its mark.
std::string coloured(std::string const& text, Mark mark);

struct Cell {
  std::string text;
  Mark mark = Mark::none;
};

using Row = std::vector<Cell>;

/// Rows of cells under headings, in columns. Texts are UTF-8.
class Table {
 public:
  explicit Table(std::vector<std::string> const& headings);

  /// @param row as many cells as there are headings
  void add(Row row) { rows_.push_back(std::move(row)); }

  /// The headings and rows, a line each.
  /// @param colour whether headings and marks may be coloured
  std::string text(bool colour) const;

 private:
  std::vector<Row> rows_;
};

/// The text with blanks up to `width` columns.
std::string padded(std::string const& text, std::size_t width);
/// How many columns UTF-8 text takes, near enough: one for each character.
std::size_t columnsOf(std::string_view text);

}  // namespace Text
