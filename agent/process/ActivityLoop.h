#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "platform/mox/Clock.h"

namespace Kest::Agent {

/// A time, or a length of time, of the time source.
using Seconds = double;

/// The agent's activity: one thread that waits for file descriptors, signals and the clock, and
/// runs what belongs to each, one at a time.
///
/// A round waits until something is ready, then runs the work of signals, of descriptors by number
/// (to be read before to be written), of the clock, and what was put off by `later` before the
/// round. Work runs to completion; what becomes ready meanwhile waits for the next round.
///
/// Re-entrancy. Work may add, replace and remove work of any kind, itself included, and may end the
/// loop. Work that was removed does not run any more; work for a descriptor that was added during a
/// round runs in the next one at the earliest, even if its number was ready under another file.
///
/// Exceptions. What work throws leaves the round, as a lack of memory does. Nothing that was ready
/// or put off is lost: the next round runs it. What is added is added whole or not at all.
///
/// Time. The clock is never dispatched before its time, and no more than a millisecond later than
/// it must be: it is looked at after every piece of work, however much more is ready. Under a time
/// source that real time does not move, waiting brings no wake-up nearer: a round then waits for
/// descriptors, signals and its timeout alone, and work that moves the time finds the clock
/// dispatched after it in the same round.
class ActivityLoop {
 public:
  using Work = std::function<void()>;

  /// Dispatches `clock` when its time comes; null for no clock.
  explicit ActivityLoop(Mox::Ptr<Mox::Clock> clock);
  /// Unblocks the signals that the loop blocked. One that is pending still is delivered then.
  ~ActivityLoop();
  ActivityLoop(ActivityLoop const&) = delete;
  ActivityLoop& operator=(ActivityLoop const&) = delete;

  /// Runs `work` whenever `fd` is readable, closed by the other side or broken. The descriptor
  /// stays the caller's; `fdDel` comes before its close.
  void fdIs(int fd, Work work);
  void fdDel(int fd);
  /// The same for when `fd` can be written to without blocking, or is broken.
  void fdWritableIs(int fd, Work work);
  void fdWritableDel(int fd);

  /// Runs `work` for every delivery of signal `number`, which is blocked for this thread from now
  /// on and so interrupts nothing. `std::system_error` when there is no such signal, when it cannot
  /// be blocked, or when the system refuses; nothing has changed then.
  void signalIs(int number, Work work);

  /// Runs `work` once, in the next round; more than one run in the order in which they were given.
  /// Long work splits itself this way to let others in between.
  void later(Work work);

  /// Runs rounds until `stop()`; returns at once if that was called before.
  void run();
  /// One round; waits at most `timeout` seconds. A timeout alone is no error.
  void runOnce(Seconds timeout);
  /// Ends `run()` after the current round.
  void stop() noexcept { stopped_ = true; }

 private:
  /// A descriptor and what it is watched for.
  using Watched = std::pair<int, short>;
  /// Shared, so that work which removes itself lives until it returns.
  using SharedWork = std::shared_ptr<Work const>;
  struct Watch {
    SharedWork work;
    std::uint64_t number;  // of its addition
  };
  struct Signal {
    SharedWork work;
    bool wasBlocked;
  };

  Seconds waitTime(Seconds timeout) const;
  /// @param lastAddition that the round knows; later ones wait for the next
  void runWatch(Watched watched, std::uint64_t lastAddition);
  void takeSignals();
  void carryOut(Work const& work);

  Mox::Ptr<Mox::Clock> clock_;
  std::map<Watched, Watch> watches_;
  std::uint64_t additions_ = 0;
  std::map<int, Signal> signals_;
  std::deque<Work> later_;
  int signalFd_ = -1;
  bool stopped_ = false;
};

}  // namespace Kest::Agent
