#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "text/Table.h"

namespace Kest::Agent {

/// Where the agent shows what it does: a terminal, or plain lines for a file or a journal.
class Console {
 public:
  /// @param terminal whether lines may be rewritten in place
  /// @param colour whether text may be coloured
  Console(std::ostream& out, bool terminal, bool colour)
      : out_(out), terminal_(terminal), colour_(colour) {}

  /// Standard output. Coloured on a terminal, unless the environment has a non-empty `NO_COLOR` or
  /// `TERM` is `dumb`.
  static Console standardOutput();

  bool terminal() const noexcept { return terminal_; }

  /// One whole line, in place of a progress line.
  void line(std::string_view text);
  /// Shows how far a job is, on a terminal only: the next call rewrites it.
  void progress(std::string_view what, std::size_t done, std::size_t total,
                std::string_view current);

  bool colour() const noexcept { return colour_; }
  std::string marked(std::string const& text, Text::Mark mark) const;

 private:
  void clearProgress();

  std::ostream& out_;
  bool terminal_;
  bool colour_;
  bool inProgress_ = false;
};

}  // namespace Kest::Agent
