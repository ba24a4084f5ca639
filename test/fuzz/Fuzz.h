#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/mox/String8.h"

/// Shared by the fuzzers. A fuzzer is one function that libFuzzer calls with input after input. It
/// leaves nothing behind, and ends the process when a property does not hold.
namespace Fuzz {

/// Ends the process unless `holds`, and shows `detail`.
inline void require(bool holds, std::string_view what, std::string_view detail = {}) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %.*s\n%.*s\n", static_cast<int>(what.size()), what.data(),
               static_cast<int>(detail.size()), detail.data());
  std::abort();
}

/// Ends the process unless the two texts are the same.
inline void requireSame(std::string_view a, std::string_view b, std::string_view what) {
  if (a == b) return;
  require(false, what, std::string(a) + "\n--\n" + std::string(b));
}

/// Ends the process unless `report` is "FILE:LINE:COLUMN: WHY", with a place in `text` or at its
/// end.
inline void requirePlace(std::string const& report, std::string const& file,
                         std::string_view text) {
  unsigned line = 0, column = 0;
  int read = 0;
  bool const placed =
      report.starts_with(file) &&
      std::sscanf(report.c_str() + file.size(), ":%u:%u: %n", &line, &column, &read) == 2;
  require(placed && report.size() > file.size() + static_cast<std::size_t>(read),
          "a refusal says where and why", report);
  for (; line > 1 && !text.empty(); --line) {
    text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
  }
  std::size_t const length = std::min(text.find('\n'), text.size());
  require(line == 1 && column >= 1 && column <= length + 1, "a refusal names a place in the text",
          report);
}

/// An input, read from the front. After its end there are zeros.
class Input {
 public:
  Input(std::uint8_t const* bytes, std::size_t size)
      : rest_(reinterpret_cast<char const*>(bytes), size) {}

  bool empty() const noexcept { return rest_.empty(); }
  std::size_t left() const noexcept { return rest_.size(); }

  std::uint8_t byte() {
    if (rest_.empty()) return 0;
    auto const first = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return first;
  }
  unsigned below(unsigned bound) { return byte() % bound; }
  bool flag() { return (byte() & 1U) != 0; }

  std::string_view take(std::size_t bytes) {
    std::string_view const front = rest_.substr(0, bytes);
    rest_.remove_prefix(front.size());
    return front;
  }
  /// Takes the bytes up to the next `end`, and that too; returns them without it.
  std::string_view takeTo(char end) {
    std::string_view const front = take(rest_.find(end));
    take(1);
    return front;
  }
  std::string_view rest() { return take(rest_.size()); }

 private:
  std::string_view rest_;
};

}  // namespace Fuzz

/// Defined by each fuzzer.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size);
