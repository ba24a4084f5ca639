#pragma once

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace Support {

using Lines = std::vector<std::string>;

/// What happened during a test, in order, a line each. Driver calls, pauses, traces and changes of
/// the status are in one journal, so that their order shows.
class Journal {
 public:
  void add(std::string line) {
    if (echo_) std::fprintf(stderr, "%s\n", line.c_str());
    lines_.push_back(std::move(line));
  }

  /// The lines since the last time.
  Lines taken() { return std::exchange(lines_, {}); }

  /// Also writes each line to standard error, where it outlives a process that ends.
  void echoIs(bool echo) { echo_ = echo; }

 private:
  Lines lines_;
  bool echo_ = false;
};

}  // namespace Support
