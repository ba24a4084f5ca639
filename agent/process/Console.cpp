#include "agent/process/Console.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>

namespace Kest::Agent {

namespace {

constexpr std::size_t barWidth = 24;

bool isSet(char const* variable) {
  char const* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool isDumb() {
  char const* const term = std::getenv("TERM");
  return term == nullptr || std::string_view(term) == "dumb";
}

std::string bar(std::size_t done, std::size_t total) {
  std::size_t const filled = total == 0 ? barWidth : barWidth * done / total;
  return "[" + std::string(filled, '#') + std::string(barWidth - filled, '.') + "]";
}

}  // namespace

Console Console::standardOutput() {
  bool const terminal = isatty(STDOUT_FILENO) == 1 && !isDumb();
  return {std::cout, terminal, terminal && !isSet("NO_COLOR")};
}

void Console::line(std::string_view text) {
  out_.clear();  // a line that could not be written, to a full disk say, is not to be the last
  clearProgress();
  out_ << text << '\n' << std::flush;
}

void Console::progress(std::string_view what, std::size_t done, std::size_t total,
                       std::string_view current) {
  if (!terminal_) return;
  clearProgress();
  out_ << what << ' ' << bar(done, total) << ' ' << done << '/' << total << "  " << current
       << std::flush;
  inProgress_ = true;
}

std::string Console::marked(std::string const& text, Text::Mark mark) const {
  return colour_ ? Text::coloured(text, mark) : text;
}

void Console::clearProgress() {
  if (inProgress_) out_ << "\r\x1b[K";
  inProgress_ = false;
}

}  // namespace Kest::Agent
