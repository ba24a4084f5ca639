#include "agent/process/Supervisor.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <optional>
#include <system_error>
#include <utility>

#include "agent/process/RunReason.h"

namespace Kest::Agent {

namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr int signalledExit = 128;
constexpr char const* cannotStart = "the agent cannot be started: fork";

[[noreturn]] void fail(char const* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

std::string inSeconds(nanoseconds time) {
  return std::to_string(std::chrono::duration_cast<seconds>(time).count()) + " s";
}

std::string named(pid_t child) {
  return "the agent (pid " + std::to_string(child) + ")";
}

std::string described(int signal) {
  char const* const name = sigabbrev_np(signal);
  return "signal " + std::to_string(signal) +
         (name != nullptr ? std::string(" (SIG") + name + ")" : "");
}

void say(std::string const& text) {
  std::cerr.clear();                                // an earlier line may have failed
  std::cerr << "kest-slice-agent: " + text + "\n";  // in one piece between the agent's own lines
}

/// The next of `signals`; none when `due` or another signal comes first.
std::optional<int> nextSignal(sigset_t const& signals, steady_clock::time_point due) {
  nanoseconds const timeout = std::max(nanoseconds(0), nanoseconds(due - steady_clock::now()));
  seconds const whole = std::chrono::duration_cast<seconds>(timeout);
  timespec time{};
  time.tv_sec = static_cast<time_t>(whole.count());
  time.tv_nsec = static_cast<decltype(time.tv_nsec)>((timeout - whole).count());
  int const signal = sigtimedwait(&signals, nullptr, &time);
  if (signal > 0) return signal;
  if (errno != EAGAIN && errno != EINTR) fail("sigtimedwait");
  return std::nullopt;
}

}  // namespace

Supervisor::Supervisor(std::function<int()> agent, RestartDelay delay, Patience patience)
    : agent_(std::move(agent)), delay_(delay), patience_(patience) {
  sigemptyset(&signals_);
  for (int const signal : {SIGTERM, SIGINT, SIGHUP, SIGCHLD}) sigaddset(&signals_, signal);
}

int Supervisor::run() {
  // If SIGCHLD were ignored, the system would not keep the exit status of children.
  if (std::signal(SIGCHLD, SIG_DFL) == SIG_ERR) fail("signal");
  if (sigprocmask(SIG_BLOCK, &signals_, nullptr) != 0) fail("sigprocmask");
  for (pid_t const supervisor = getpid();;) {
    steady_clock::time_point const start = steady_clock::now();
    pid_t const child = fork();
    if (child == 0) return runAsChild(supervisor);
    std::string told;
    if (child < 0) {
      // At the start somebody sees the error. Later perhaps nobody does, and the shortage may end.
      if (lastEnd_.empty()) fail(cannotStart);
      told = std::string(cannotStart) + ": " + std::strerror(errno);
    } else {
      int const status = statusAtEnd(child);
      if (WIFEXITED(status)) return WEXITSTATUS(status);
      lastEnd_ = described(WTERMSIG(status));
      told = named(child) + " was ended by " + lastEnd_;
      if (endSignal_ != 0) {
        say(told);
        return signalledExit + WTERMSIG(status);
      }
    }
    seconds const delay = delay_.after(steady_clock::now() - start);
    say(told + "; starting it again" + (delay > seconds(0) ? " in " + inSeconds(delay) : ""));
    if (!restartIsDue(delay)) return signalledExit + endSignal_;
  }
}

int Supervisor::runAsChild(pid_t supervisor) const {
  if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0) fail("prctl");
  // The supervisor ended before the call above: its end will send no signal.
  if (getppid() != supervisor) return signalledExit + SIGKILL;
  sigset_t children;
  sigemptyset(&children);
  sigaddset(&children, SIGCHLD);
  if (sigprocmask(SIG_UNBLOCK, &children, nullptr) != 0) fail("sigprocmask");
  if (!lastEnd_.empty() && setenv(lastEndVariable, lastEnd_.c_str(), 1) != 0) fail("setenv");
  life_.isWatched();
  return agent_();
}

/// Waits for the end of the child, passing signals on, and returns its wait status.
int Supervisor::statusAtEnd(pid_t child) {
  auto const tell = [child](int signal) {
    if (kill(child, signal) != 0) fail("kill");
  };
  silentLooks_ = 0;
  for (steady_clock::time_point due = steady_clock::now() + patience_.look;;) {
    std::optional<int> const signal = nextSignal(signals_, due);
    if (signal == SIGCHLD) {
      int status = 0;
      pid_t const ended = waitpid(child, &status, WNOHANG);
      if (ended < 0) fail("waitpid");
      if (ended == child) return status;
    } else if (signal) {
      if (signal != SIGHUP && endSignal_ == 0) {
        endSignal_ = *signal;
        due = steady_clock::now() + patience_.end;
      }
      tell(*signal);
    }
    if (steady_clock::now() < due) continue;
    due = steady_clock::now() + patience_.look;
    std::string const complaint = complaintAtLook();
    if (complaint.empty()) continue;
    say(named(child) + " " + complaint + "; killing it");
    tell(SIGKILL);
    due += std::chrono::hours(1);  // it may take the system a while
  }
}

/// Why the child is to be killed; empty when it is not.
std::string Supervisor::complaintAtLook() {
  if (endSignal_ != 0) return "has not ended in " + inSeconds(patience_.end);
  silentLooks_ = life_.taken() ? 0 : silentLooks_ + 1;
  if (silentLooks_ < patience_.looks) return "";
  return "has given no sign of life for " + inSeconds(patience_.looks * patience_.look);
}

/// Waits for the time of the next start; false when SIGTERM or SIGINT came first. SIGHUP changes
/// nothing here: the next child reads the slice file anyway.
bool Supervisor::restartIsDue(seconds delay) {
  steady_clock::time_point const due = steady_clock::now() + delay;
  for (;;) {
    std::optional<int> const signal = nextSignal(signals_, due);
    if (!signal) {
      if (steady_clock::now() >= due) return true;
    } else if (*signal == SIGTERM || *signal == SIGINT) {
      endSignal_ = *signal;
      return false;
    }
  }
}

}  // namespace Kest::Agent
