#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>

#include "agent/process/Supervisor.h"
#include "test/exhaustion/Calls.h"

/// The supervisor when the system refuses, and when its waits are interrupted.
namespace Kest::Agent {
namespace {

using Exhaustion::Lasting;

void say(std::string const& text) {
  Exhaustion::TestsOwnCalls const own;
  if (write(STDERR_FILENO, text.data(), text.size()) < 0) std::abort();
}

/// An agent that aborts at first and ends in good order when it is started again.
int abortsOnce() {
  char const* const lastEnd = std::getenv("KEST_LAST_END");
  say(lastEnd == nullptr ? "first\n" : "again\n");
  if (lastEnd == nullptr) {
    std::signal(SIGABRT, SIG_DFL);
    raise(SIGABRT);
  }
  return 7;
}

struct Outcome {
  int exitCode = -1;
  std::string shown;  // by the supervisor and its children, to the end of the last of them
};

/// Runs `work` in a process of its own, which ends with what it returns.
Outcome outcomeOf(std::function<int()> const& work) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe2");
  pid_t const pid = fork();
  if (pid < 0) throw std::runtime_error("fork");
  if (pid == 0) {
    dup2(ends[1], STDERR_FILENO);
    unsetenv("KEST_LAST_END");
    _exit(work());
  }
  close(ends[1]);
  Outcome outcome;
  std::array<char, 1024> block{};
  constexpr int deadlineMilliseconds = 60000;
  for (ssize_t bytes = 1; bytes > 0;) {
    pollfd waiting{ends[0], POLLIN, 0};
    if (poll(&waiting, 1, deadlineMilliseconds) == 0) {
      kill(pid, SIGKILL);
      outcome.shown += "(hangs)";
      break;
    }
    bytes = read(ends[0], block.data(), block.size());
    if (bytes > 0) outcome.shown.append(block.data(), static_cast<std::size_t>(bytes));
  }
  close(ends[0]);
  int status = 0;
  waitpid(pid, &status, 0);
  if (WIFEXITED(status)) outcome.exitCode = WEXITSTATUS(status);
  return outcome;
}

constexpr int outOfWays = 100;
constexpr int outOfCalls = 101;
constexpr int refused = 2;
constexpr int terminated = 128 + SIGTERM;

/// As the agent's `main` does it. Returns in the children too, which end with the result.
int supervised(RestartDelay delay = RestartDelay()) {
  try {
    return Supervisor(&abortsOnce, delay).run();
  } catch (std::exception const& error) {
    say(std::string("error: ") + error.what() + "\n");
    return refused;
  }
}

/// Expects what is shown when an agent could be started once, but not again before the SIGTERM.
void expectTriedOn(std::string const& shown) {
  std::string const tried = "kest-slice-agent: the agent cannot be started: fork: ";
  EXPECT_EQ(shown.rfind("first\n", 0), 0U) << shown;
  EXPECT_NE(shown.find(tried), std::string::npos) << shown;
  std::string const last = "; starting it again in 30 s\n";
  EXPECT_EQ(shown.rfind(last), shown.size() - last.size()) << shown;
}

TEST(SupervisorCalls, ItGoesOnOrEndsWithTheSystemsReason) {
  unsigned triedOn = 0;
  for (Lasting const lasting : {Lasting::once, Lasting::forGood}) {
    bool hasCall = true;
    for (std::size_t at = 1; hasCall; ++at) {
      for (std::size_t way = 0;; ++way) {
        SCOPED_TRACE(testing::Message() << "call " << at << ", way " << way);
        Outcome const found = outcomeOf([&] {
          pid_t const process = getpid();
          Exhaustion::waitsAreVirtual(0);
          Exhaustion::FailingCall const failing(at, way, lasting);
          int const code = supervised();
          if (getpid() != process || code != 7 || failing.hasCome()) return code;
          return failing.isOutOfWays() ? outOfWays : outOfCalls;
        });
        hasCall = found.exitCode != outOfCalls;
        if (found.exitCode == outOfCalls || found.exitCode == outOfWays) break;
        ASSERT_EQ(found.shown.find("(hangs)"), std::string::npos) << found.shown;
        if (found.exitCode == refused) {
          EXPECT_NE(found.shown.find("error: "), std::string::npos) << found.shown;
        } else if (found.exitCode == terminated) {
          expectTriedOn(found.shown);
          ++triedOn;
        } else {
          EXPECT_EQ(found.exitCode, 7) << found.shown;
          EXPECT_NE(found.shown.find("again\n"), std::string::npos) << found.shown;
        }
      }
    }
  }
  EXPECT_EQ(triedOn, 2U) << "processes or memory that are short for good";
}

/// A signal that nobody waits for ends a wait early; the time that is left is waited for.
TEST(SupervisorCalls, AnInterruptedPauseIsWaitedOut) {
  constexpr unsigned interruptions = 5;
  Outcome const found = outcomeOf([] {
    pid_t const process = getpid();
    std::chrono::seconds const hour(3600);
    Exhaustion::waitsAreVirtual(interruptions);
    int const code = supervised(RestartDelay({hour, 0, hour, hour}));
    if (getpid() == process) {
      auto const waited =
          std::chrono::duration_cast<std::chrono::seconds>(Exhaustion::virtualWait());
      say(waited >= hour - std::chrono::seconds(10) ? "an hour later\n" : "too early\n");
    }
    return code;
  });
  EXPECT_EQ(found.exitCode, 7);
  EXPECT_NE(found.shown.find("in 3600 s\nagain\nan hour later\n"), std::string::npos)
      << found.shown;
}

}  // namespace
}  // namespace Kest::Agent
