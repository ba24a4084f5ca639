#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <deque>
#include <streambuf>
#include <string>
#include <string_view>

#include "platform/mox/ActivityLoop.h"

namespace Kest::Agent {

/// Writes as much of `text` as a descriptor takes without blocking; -1 and `errno` when that is
/// nothing. The descriptor may be shared with other processes: it is left as it is.
ssize_t writeAtOnce(int fd, std::string_view text) noexcept;

/// How much an output puts up with.
struct OutputLimits {
  std::size_t bytes = std::size_t{256} << 10U;  // that wait
  /// For a reader who comes to be late, once until all is written again: a process that is about to
  /// abort has said why.
  std::chrono::milliseconds patience{300};
};

/// Where a stream leads that must not block, nor fail for long. What the reader does not take at
/// once waits, up to a bound. What goes beyond that is lost, by whole flushes, and how many lines
/// they had is written in their place. So is what cannot be written, to a full disk say.
class Output : public std::streambuf {
 public:
  /// The descriptor stays the caller's.
  explicit Output(int fd, OutputLimits limits = {}) : fd_(fd), limits_(limits) {}
  Output(Output const&) = delete;
  Output& operator=(Output const&) = delete;
  ~Output() override { loopIs(nullptr); }

  /// From now on the loop writes what waits once it can be written. Null: nobody does.
  void loopIs(Mox::ActivityLoop* loop);

  /// Writes what waits until all is written or the time has come.
  void drain(std::chrono::steady_clock::time_point until);
  /// Forgets what waits: after a fork it is the other process's to write.
  void forget() noexcept;

 protected:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(char const* text, std::streamsize bytes) override;
  int sync() override;

 private:
  /// What is written or lost as a whole.
  struct Piece {
    std::string text;
    std::size_t lines;  // in it; or those that it says are lost
  };

  void take(std::string text);
  void add(Piece piece);
  void write();
  void watch();

  int fd_;
  OutputLimits limits_;
  std::string flush_;          // what is put together for the next one
  std::deque<Piece> waiting_;  // to be written, in order
  std::size_t bytes_ = 0;      // of what waits
  std::size_t lost_ = 0;       // lines, after what waits
  bool isLate_ = false;        // the reader, who was waited for
  bool isLineBegun_ = false;   // at the end of what waits, or was written last
  Mox::ActivityLoop* loop_ = nullptr;
  bool isWatched_ = false;  // by the loop
};

}  // namespace Kest::Agent
