#pragma once

#include <chrono>
#include <cstdio>
#include <memory>
#include <streambuf>

#include "agent/process/Output.h"

namespace Kest::Agent {

/// Standard output and standard error of a process that must not wait for whoever reads them, nor
/// end when he goes: SIGPIPE is ignored, and `std::cout`, `std::cerr` and the C library's `stderr`
/// lead to an `Output` each. There is one at a time; its end brings the streams back as they were.
///
/// A pipe or terminal that this process may open gets a description of its own, which does not
/// block. So what is written past the streams does not block either; others' use is not affected.
class StandardStreams {
 public:
  StandardStreams();
  StandardStreams(StandardStreams const&) = delete;
  StandardStreams& operator=(StandardStreams const&) = delete;
  ~StandardStreams();

  /// As `Output` has them, for both.
  void loopIs(Mox::ActivityLoop* loop);
  void drain(std::chrono::milliseconds most);
  void forget() noexcept;

 private:
  Output out_;
  Output err_;
  std::streambuf* coutBefore_;
  std::streambuf* cerrBefore_;
  std::FILE* stderrBefore_;
};

}  // namespace Kest::Agent
