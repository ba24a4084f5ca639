#pragma once

#include <chrono>
#include <cstdio>
#include <memory>
#include <streambuf>

#include "agent/process/Output.h"

namespace Kest::Agent {

/// Standard output and standard error of a process that must not wait for their readers, nor end
/// when a reader goes: SIGPIPE is ignored, and `std::cout`, `std::cerr` and the C library's
/// `stderr` write to an `Output` each. There may be one object at a time; its destructor restores
/// the streams.
///
/// A pipe or terminal that this process may open is opened anew, non-blocking. So writes that go
/// past the streams do not block either, and other processes are not affected.
class StandardStreams {
 public:
  StandardStreams();
  StandardStreams(StandardStreams const&) = delete;
  StandardStreams& operator=(StandardStreams const&) = delete;
  ~StandardStreams();

  /// The functions of `Output`, for both streams.
  void loopIs(ActivityLoop* loop);
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
