#pragma once

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <string>

#include "agent/process/RestartDelay.h"
#include "agent/process/SignOfLife.h"

namespace Kest::Agent {

/// How patient a supervisor is with its child.
struct Patience {
  std::chrono::nanoseconds look = std::chrono::seconds(5);  // between two looks for a sign of life
  unsigned looks = 6;  // so many looks in a row without a sign are one too many
  std::chrono::nanoseconds end = std::chrono::seconds(5);  // to end in when it is told to
};

/// Runs the agent as a child process and starts it again when a signal ended it: the agent aborts
/// when a chip changed behind its back, and its restart is the recovery.
///
/// A child that gives no sign of life is killed and started again. Looks are counted, not time: one
/// that was stopped together with its supervisor is given all of them again.
///
/// SIGTERM, SIGINT and SIGHUP are passed on. Whoever sends one to both, as a terminal does, makes
/// the child see it twice. A child that does not end in time is killed. So is one whose supervisor
/// is gone, at once: it may be waiting for its driver, and must not stand in the way of the next.
class Supervisor {
 public:
  explicit Supervisor(std::function<int()> agent, RestartDelay delay = RestartDelay(),
                      Patience patience = {});

  /// Returns in two processes. In the child it is `agent` that has ended: there the passed-on
  /// signals are blocked from the start, so that none is lost before `agent` waits for them, and
  /// `KEST_LAST_END` tells the end of the child before, if there was one. Its signs of life are
  /// looked for.
  ///
  /// In the supervisor it returns the exit code to end with: the child's own, or 128 and the number
  /// of the signal that ended it after SIGTERM or SIGINT, or of the one that came between two runs.
  /// SIGCHLD has its default action then, and the signals stay blocked.
  int run();

 private:
  int runAsChild(pid_t supervisor) const;
  int statusAtEnd(pid_t child);
  std::string complaintAtLook();
  bool restartIsDue(std::chrono::seconds delay);

  std::function<int()> agent_;
  RestartDelay delay_;
  Patience patience_;
  LifeLine life_;
  unsigned silentLooks_ = 0;  // in a row, at the child that runs
  sigset_t signals_{};        // that the supervisor waits for
  int endSignal_ = 0;         // SIGTERM or SIGINT once it came
  std::string lastEnd_;       // of the last child; empty: none yet
};

}  // namespace Kest::Agent
