#pragma once

#include <cstdio>
#include <string>

#include "test/support/Journal.h"

namespace Simulation {

/// Takes what the program writes to standard error into the journal, line by line, for as long as
/// it lives; the journal's own echo must be off then. One at a time.
class Capture {
 public:
  explicit Capture(Support::Journal& journal);
  ~Capture();
  Capture(Capture const&) = delete;
  Capture& operator=(Capture const&) = delete;

  /// From now on what is written goes to `text`, up to `size`, with a NUL behind it.
  void divertTo(char* text, std::size_t size);
  void write(char const* bytes, std::size_t count);

 private:
  Support::Journal& journal_;
  std::string line_;
  char* text_ = nullptr;
  std::size_t left_ = 0;
  std::FILE* before_;
  std::FILE* stream_;
};

}  // namespace Simulation
