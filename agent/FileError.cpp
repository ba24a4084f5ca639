#include "agent/FileError.h"

namespace Kest::Agent {

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

std::string report(std::string_view file, std::size_t line, std::size_t column,
                   std::string_view message, std::string_view lineText) {
  std::string text(file);
  text.append(":").append(std::to_string(line));
  text.append(":").append(std::to_string(column + 1));
  text.append(": ").append(message);
  text.append("\n  ").append(lineText);
  text.append("\n  ").append(caretIndent(lineText, column)).append("^");
  return text;
}

}  // namespace

FileError::FileError(std::string_view file, std::size_t line, std::size_t column,
                     std::string_view message, std::string_view lineText)
    : std::runtime_error(report(file, line, column, message, lineText)) {}

FileError::FileError(std::string_view file, std::string_view message)
    : std::runtime_error(std::string(file).append(": ").append(message)) {}

}  // namespace Kest::Agent
