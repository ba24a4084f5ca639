#include "text/FileError.h"

#include <algorithm>
#include <utility>

namespace Text {

namespace {

bool continuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U;
}

/// Blanks that bring a caret below the given column of the line, tabs kept as tabs.
std::string caretIndent(std::string_view line, std::size_t column) {
  std::string indent;
  for (char const byte : line.substr(0, column)) {
    if (!continuesCharacter(byte)) indent += byte == '\t' ? '\t' : ' ';
  }
  return indent;
}

/// As much of a line as people want to see, and the column there.
struct Excerpt {
  std::string text;
  std::size_t column;
};

Excerpt excerptOf(std::string_view line, std::size_t column) {
  constexpr std::size_t longest = 1000;
  constexpr std::size_t around = 60;
  constexpr std::string_view dots = "...";
  if (line.size() <= longest) return {std::string(line), column};
  // To whole characters; a long run of bytes that continue none is cut all the same.
  constexpr std::size_t longestRest = 3;
  std::size_t first = column > around ? column - around : 0;
  std::size_t const leastFirst = first - std::min(first, longestRest);
  while (first > leastFirst && continuesCharacter(line[first])) --first;
  std::size_t end = std::min(column + around, line.size());
  std::size_t const largestEnd = std::min(end + longestRest, line.size());
  while (end < largestEnd && continuesCharacter(line[end])) ++end;
  std::string text(first > 0 ? dots : "");
  std::size_t const shift = first - text.size();
  text.append(line.substr(first, end - first)).append(end < line.size() ? dots : "");
  return {text, column - shift};
}

}  // namespace

Place::Place(std::size_t line, std::size_t column, std::string_view lineText)
    : line_(line), column_(column) {
  Excerpt excerpt = excerptOf(lineText, column);
  std::replace(excerpt.text.begin(), excerpt.text.end(), '\0', ' ');  // it would end the report
  excerpt_ = std::move(excerpt.text);
  excerptColumn_ = excerpt.column;
}

Place Place::inText(std::string_view text, std::size_t at) {
  std::string_view const before = text.substr(0, at);
  auto const line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  std::size_t const start = before.rfind('\n') + 1;  // 0 in the first line
  std::string_view lineText = text.substr(start, text.substr(start).find('\n'));
  if (lineText.ends_with('\r')) lineText.remove_suffix(1);
  return {line + 1, at - start, lineText};
}

std::string Place::headline(std::string_view file, std::string_view message) const {
  std::string text(file);
  text.append(":").append(std::to_string(line_));
  text.append(":").append(std::to_string(column_ + 1));
  return text.append(": ").append(message);
}

std::string Place::report(std::string_view file, std::string_view message) const {
  return headline(file, message) + "\n  " + excerpt_ + "\n  " +
         caretIndent(excerpt_, excerptColumn_) + "^";
}

FileError::FileError(std::string_view file, std::string_view message)
    : std::runtime_error(std::string(file).append(": ").append(message)) {}

FileError::FileError(std::string_view file, Place const& place, std::string_view message)
    : std::runtime_error(place.report(file, message)) {}

}  // namespace Text
