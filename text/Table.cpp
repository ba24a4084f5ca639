#include "text/Table.h"

#include <algorithm>

namespace Text {

std::string coloured(std::string const& text, Mark mark) {
  constexpr char const* colours[] = {"", "\033[1m", "\033[32m", "\033[31m"};
  if (mark == Mark::none) return text;
  return colours[static_cast<std::size_t>(mark)] + text + "\033[0m";
}

std::size_t columnsOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

std::string padded(std::string const& text, std::size_t width) {
  // A cell that is wider than that stands out of its column and costs the others nothing.
  constexpr std::size_t widestColumn = 80;
  std::size_t const has = columnsOf(text);
  std::size_t const wanted = std::min(width, widestColumn);
  return text + std::string(wanted > has ? wanted - has : 0, ' ');
}

Table::Table(std::vector<std::string> const& headings) {
  Row row;
  for (std::string const& heading : headings) row.push_back({heading, Mark::heading});
  add(std::move(row));
}

std::string Table::text(bool colour) const {
  std::vector<std::size_t> widths(rows_.front().size());
  for (Row const& row : rows_) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], columnsOf(row[column].text));
    }
  }
  widths.back() = 0;  // nothing follows it
  std::string all;
  for (Row const& row : rows_) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      std::string const cell = padded(row[column].text, widths[column]);
      all += column == 0 ? "" : "  ";
      all += colour ? coloured(cell, row[column].mark) : cell;
    }
    while (all.ends_with(' ')) all.pop_back();
    all += '\n';
  }
  return all;
}

}  // namespace Text
