#pragma once

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <string>

#include "agent/RestartDelay.h"

namespace Kest::Agent {

/// Runs the agent as a child process and starts it again when a signal ended it: the agent aborts
/// when a chip changed behind its back, and its restart is the recovery.
///
/// SIGTERM, SIGINT and SIGHUP are passed on. Whoever sends one to both, as a terminal does, makes
/// the child see it twice. A child gets SIGTERM when its supervisor is gone.
class Supervisor {
 public:
  explicit Supervisor(std::function<int()> agent, RestartDelay delay = RestartDelay());

  /// Returns in two processes. In the child it is `agent` that has ended: there the passed-on
  /// signals are blocked from the start, so that none is lost before `agent` waits for them, and
  /// `KEST_LAST_END` tells the end of the child before, if there was one.
  ///
  /// In the supervisor it returns the exit code to end with: the child's own, or 128 and the number
  /// of the signal that ended it after SIGTERM or SIGINT, or of the one that came between two runs.
  /// SIGCHLD has its default action then, and the signals stay blocked.
  int run();

 private:
  int runAsChild(pid_t supervisor) const;
  int statusAtEnd(pid_t child);
  bool restartIsDue(std::chrono::seconds delay);

  std::function<int()> agent_;
  RestartDelay delay_;
  sigset_t signals_{};   // that the supervisor waits for
  int endSignal_ = 0;    // SIGTERM or SIGINT once it came
  std::string lastEnd_;  // of the last child; empty: none yet
};

}  // namespace Kest::Agent
