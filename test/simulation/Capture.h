#pragma once

#include <cstdio>
#include <string>

#include "test/support/Journal.h"

namespace Simulation {

/// While it lives, each line that the program writes to standard error goes to the journal. The
/// journal's own echo must be off then. One at a time.
class Capture {
 public:
  explicit Capture(Support::Journal& journal);
  ~Capture();
  Capture(Capture const&) = delete;
  Capture& operator=(Capture const&) = delete;

  /// From now on what the program writes goes to standard error again.
  void end();
  void write(char const* bytes, std::size_t count);

 private:
  Support::Journal& journal_;
  std::string line_;
  std::FILE* before_;
  std::FILE* stream_;
};

}  // namespace Simulation
