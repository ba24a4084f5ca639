#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <deque>
#include <streambuf>
#include <string>
#include <string_view>

#include "agent/process/ActivityLoop.h"

namespace Kest::Agent {

/// Where a descriptor leads. That decides how to write to it without blocking.
enum class OutputKind {
  file,    // never blocks
  socket,  // may be told not to block
  other,   // is asked for room first
};
OutputKind outputKindOf(int fd) noexcept;

/// Writes as much of `text` as a descriptor takes without blocking; -1 and `errno` when it takes
/// nothing. Does not change the descriptor's flags: other processes may share it.
ssize_t writeAtOnce(int fd, OutputKind kind, std::string_view text) noexcept;

/// How much an output keeps, and how long it waits.
struct OutputLimits {
  std::size_t bytes = std::size_t{256} << 10U;  // that may wait
  /// How long a flush waits when the reader falls behind: once, until everything has been written
  /// again. It lets a process that is about to abort say why.
  std::chrono::milliseconds patience{300};
};

/// The buffer of a stream that must neither block nor stay failed. Text that the reader does not
/// take at once waits, up to a bound. Beyond the bound whole flushes are lost; a line that counts
/// the lost lines takes their place. The same happens to text that cannot be written, say to a full
/// disk.
class Output : public std::streambuf {
 public:
  /// The descriptor stays the caller's.
  explicit Output(int fd, OutputLimits limits = {})
      : fd_(fd), kind_(outputKindOf(fd)), limits_(limits) {}
  Output(Output const&) = delete;
  Output& operator=(Output const&) = delete;
  ~Output() override { loopIs(nullptr); }

  /// From now on the loop writes the waiting text when there is room. Null: no loop does.
  void loopIs(ActivityLoop* loop);

  /// Writes the waiting text until all is written or the time has come.
  void drain(std::chrono::steady_clock::time_point until);
  /// Drops the waiting text: after a fork the other process writes it.
  void forget() noexcept;

 protected:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(char const* text, std::streamsize bytes) override;
  int sync() override;

 private:
  /// Text that is written or lost as a whole.
  struct Piece {
    std::string text;
    std::size_t lines;  // in the text; or the number of lost lines that it reports
  };

  void take(std::string text);
  void add(Piece piece);
  void write();
  void watch();

  int fd_;
  OutputKind kind_;
  OutputLimits limits_;
  std::string flush_;          // text since the last flush
  std::deque<Piece> waiting_;  // to be written, in order
  std::size_t bytes_ = 0;      // that wait
  std::size_t lost_ = 0;       // lines lost since the last waiting piece
  bool isLate_ = false;        // the reader has fallen behind and was waited for
  bool isLineBegun_ = false;   // the text ends within a line
  ActivityLoop* loop_ = nullptr;
  bool isWatched_ = false;  // by the loop
};

}  // namespace Kest::Agent
