#include "agent/process/Supervisor.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Kest::Agent {
namespace {

int checked(int result, char const* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

/// In a supervised child: shows a line.
void say(std::string text) {
  text += '\n';
  if (write(STDERR_FILENO, text.data(), text.size()) != static_cast<ssize_t>(text.size())) abort();
}

/// In a supervised child: what it was told about the one before.
std::string lastEnd() {
  char const* const told = std::getenv("KEST_LAST_END");
  return told == nullptr ? "nothing" : told;
}

/// In a supervised child: ends by `signal`, whatever a sanitizer would make of it.
void endBy(int signal) {
  std::signal(signal, SIG_DFL);
  raise(signal);
}

/// In a supervised child: the next signal that the supervisor passes on.
int nextSignal() {
  sigset_t all;
  sigemptyset(&all);
  for (int const signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&all, signal);
  return sigwaitinfo(&all, nullptr);
}

/// A supervisor in a process of its own. Waiting for it gives up after a deadline that no working
/// one comes near.
class SupervisorProcess {
 public:
  explicit SupervisorProcess(std::function<int()> const& agent,
                             RestartDelay const& delay = RestartDelay(),
                             Patience const& patience = {}) {
    std::array<int, 2> shown{};
    checked(pipe2(shown.data(), O_CLOEXEC), "pipe2");
    shown_ = shown[0];
    pid_ = checked(fork(), "fork");
    if (pid_ == 0) {
      dup2(shown[1], STDERR_FILENO);
      close(shown[1]);
      unsetenv("KEST_LAST_END");
      _exit(Supervisor(agent, delay, patience).run());
    }
    close(shown[1]);
  }
  SupervisorProcess(SupervisorProcess const&) = delete;
  SupervisorProcess& operator=(SupervisorProcess const&) = delete;
  ~SupervisorProcess() {
    if (pid_ > 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    close(shown_);
  }

  void signalIs(int number) const { checked(kill(pid_, number), "kill"); }

  /// Takes what the supervisor and its children show, to the end of a line that contains `text`.
  std::string shownUntil(std::string const& text) {
    std::size_t at = 0;
    std::size_t end = 0;
    while ((at = text_.find(text)) == std::string::npos ||
           (end = text_.find('\n', at)) == std::string::npos) {
      if (!readMore()) throw std::runtime_error("ended before '" + text + "':\n" + text_);
    }
    std::string const taken = text_.substr(0, end + 1);
    text_.erase(0, taken.size());
    return withoutPids(taken);
  }

  /// How the supervisor ended: its exit code, or minus the signal that killed it.
  int ended() {
    while (readMore()) {  // until its children have ended as well
    }
    int status = 0;
    checked(waitpid(std::exchange(pid_, -1), &status, 0), "waitpid");
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
  }

  /// What has not been taken of what was shown.
  std::string shown() const { return withoutPids(text_); }

 private:
  static std::string withoutPids(std::string text) {
    std::string const pid = "pid ";
    for (std::size_t at = 0; (at = text.find(pid, at)) != std::string::npos;) {
      at += pid.size();
      text.replace(at, text.find_first_not_of("0123456789", at) - at, "N");
    }
    return text;
  }

  bool readMore() {
    constexpr int deadlineMilliseconds = 120000;
    pollfd waiting{shown_, POLLIN, 0};
    if (checked(poll(&waiting, 1, deadlineMilliseconds), "poll") == 0) {
      throw std::runtime_error("nothing more is shown but\n" + text_);
    }
    std::array<char, 4096> block{};
    int const bytes = checked(static_cast<int>(read(shown_, block.data(), block.size())), "read");
    text_.append(block.data(), static_cast<std::size_t>(bytes));
    return bytes > 0;
  }

  pid_t pid_ = -1;
  int shown_ = -1;
  std::string text_;
};

TEST(Supervisor, StartsAgainAfterEverySignalAndSaysWhichItWas) {
  SupervisorProcess supervisor([] {
    say("last: " + lastEnd());
    if (lastEnd() == "nothing") endBy(SIGABRT);
    if (lastEnd() == "signal 6 (SIGABRT)") endBy(SIGBUS);
    return 0;
  });
  EXPECT_EQ(supervisor.ended(), 0);
  EXPECT_EQ(supervisor.shown(),
            "last: nothing\n"
            "kest-slice-agent: the agent (pid N) was ended by signal 6 (SIGABRT); starting it "
            "again\n"
            "last: signal 6 (SIGABRT)\n"
            "kest-slice-agent: the agent (pid N) was ended by signal 7 (SIGBUS); starting it "
            "again\n"
            "last: signal 7 (SIGBUS)\n");
}

TEST(Supervisor, EndsWithTheExitCodeOfAChildThatEndsByItself) {
  for (int const code : {0, 1, 2, 143}) {
    SupervisorProcess supervisor([code] {
      say("once");
      return code;
    });
    EXPECT_EQ(supervisor.ended(), code);
    EXPECT_EQ(supervisor.shown(), "once\n");
  }
}

TEST(Supervisor, PassesSignalsOnAndEndsAsTheChildDoes) {
  for (int const signal : {SIGTERM, SIGINT}) {
    SupervisorProcess supervisor([] {
      say("waits");
      for (int at = nextSignal();; at = nextSignal()) {
        say("signal " + std::to_string(at));
        if (at != SIGHUP) return 3;
      }
    });
    supervisor.shownUntil("waits");
    for (int times = 0; times < 2; ++times) {
      supervisor.signalIs(SIGHUP);
      EXPECT_EQ(supervisor.shownUntil("signal"), "signal 1\n");
    }
    supervisor.signalIs(signal);
    EXPECT_EQ(supervisor.ended(), 3);
    EXPECT_EQ(supervisor.shown(), "signal " + std::to_string(signal) + "\n");
  }
}

TEST(Supervisor, DoesNotTakeSighupForAReasonToEnd) {
  SupervisorProcess supervisor([] {
    say("last: " + lastEnd());
    if (lastEnd() == "nothing" && nextSignal() == SIGHUP) endBy(SIGABRT);
    return 0;
  });
  supervisor.shownUntil("last: nothing");
  supervisor.signalIs(SIGHUP);
  EXPECT_EQ(supervisor.ended(), 0);
  EXPECT_EQ(supervisor.shown(),
            "kest-slice-agent: the agent (pid N) was ended by signal 6 (SIGABRT); starting it "
            "again\n"
            "last: signal 6 (SIGABRT)\n");
}

TEST(Supervisor, DoesNotStartAgainWhatASignalEndsAfterItWasToEnd) {
  for (int const fatal : {SIGTERM, SIGKILL}) {
    SupervisorProcess supervisor([fatal] {
      say("waits");
      nextSignal();
      sigset_t none;
      sigemptyset(&none);
      sigprocmask(SIG_SETMASK, &none, nullptr);
      return raise(fatal);
    });
    supervisor.shownUntil("waits");
    supervisor.signalIs(SIGTERM);
    EXPECT_EQ(supervisor.ended(), 128 + fatal);
    EXPECT_EQ(supervisor.shown(), fatal == SIGTERM
                                      ? "kest-slice-agent: the agent (pid N) was ended by signal "
                                        "15 (SIGTERM)\n"
                                      : "kest-slice-agent: the agent (pid N) was ended by signal "
                                        "9 (SIGKILL)\n");
  }
}

TEST(Supervisor, IsNotKeptFromEndingByTheWaitForTheNextStart) {
  for (int const signal : {SIGTERM, SIGINT}) {
    std::chrono::seconds const hour(3600);
    SupervisorProcess supervisor(
        [] {
          endBy(SIGABRT);
          return 0;
        },
        RestartDelay({hour, 1, hour, hour}));
    EXPECT_EQ(supervisor.shownUntil(" s\n"),
              "kest-slice-agent: the agent (pid N) was ended by signal 6 (SIGABRT); starting it "
              "again\n"
              "kest-slice-agent: the agent (pid N) was ended by signal 6 (SIGABRT); starting it "
              "again in 3600 s\n");
    supervisor.signalIs(SIGHUP);  // which is no reason to start or to end
    supervisor.signalIs(signal);
    EXPECT_EQ(supervisor.ended(), 128 + signal);
    EXPECT_EQ(supervisor.shown(), "");
  }
}

using std::chrono::hours;
using std::chrono::milliseconds;

/// In a supervised child: does nothing, and obeys nothing that it can help.
[[noreturn]] void hang() {
  sigset_t all;
  sigfillset(&all);
  sigprocmask(SIG_BLOCK, &all, nullptr);
  for (;;) pause();
}

TEST(Supervisor, KillsAndStartsAgainAChildThatGivesNoSignOfLife) {
  SupervisorProcess supervisor(
      [] {
        say("last: " + lastEnd());
        if (lastEnd() == "nothing") hang();
        return 0;
      },
      RestartDelay(), {milliseconds(1), 3, hours(1)});
  EXPECT_EQ(supervisor.ended(), 0);
  // Where the machine is busy, a child may be killed before it says anything, or just before it
  // ends.
  std::string const shown = supervisor.shown();
  EXPECT_THAT(
      shown,
      testing::HasSubstr(
          "kest-slice-agent: the agent (pid N) has given no sign of life for 0 s; killing it\n"
          "kest-slice-agent: the agent (pid N) was ended by signal 9 (SIGKILL); starting it "
          "again\n"));
  EXPECT_THAT(shown, testing::HasSubstr("last: signal 9 (SIGKILL)\n"));
}

TEST(Supervisor, KillsAChildThatIsStopped) {
  SupervisorProcess supervisor(
      [] {
        say("last: " + lastEnd());
        if (lastEnd() == "nothing") raise(SIGSTOP);
        return lastEnd() == "signal 9 (SIGKILL)" ? 0 : 1;
      },
      RestartDelay(), {milliseconds(1), 3, hours(1)});
  EXPECT_EQ(supervisor.ended(), 0);
}

TEST(Supervisor, KillsAChildThatDoesNotEndInTime) {
  for (int const signal : {SIGTERM, SIGINT}) {
    SupervisorProcess supervisor(
        [] {
          say("hangs");
          hang();
          return 0;
        },
        RestartDelay(), {hours(1), 1, milliseconds(1)});
    supervisor.shownUntil("hangs");
    supervisor.signalIs(signal);
    EXPECT_EQ(supervisor.ended(), 128 + SIGKILL);
    EXPECT_EQ(supervisor.shown(),
              "kest-slice-agent: the agent (pid N) has not ended in 0 s; killing it\n"
              "kest-slice-agent: the agent (pid N) was ended by signal 9 (SIGKILL)\n");
  }
}

TEST(Supervisor, TakesItsChildWithItWhenItIsKilled) {
  SupervisorProcess supervisor([] {
    say("waits");
    hang();
    return 0;
  });
  supervisor.shownUntil("waits");
  supervisor.signalIs(SIGKILL);
  EXPECT_EQ(supervisor.ended(), -SIGKILL);
  EXPECT_EQ(supervisor.shown(), "");
}

/// In the supervisor: kills it when its child has begun, before the child does anything.
void endBeforeTheChildCanTell() {
  pthread_atfork(nullptr, nullptr, [] {
    pid_t const supervisor = getppid();
    kill(supervisor, SIGKILL);
    while (getppid() == supervisor) sched_yield();
  });
}

TEST(Supervisor, LeavesNoChildBehindWhenItIsKilledAtItsStart) {
  std::array<int, 2> shown{};
  checked(pipe2(shown.data(), O_CLOEXEC), "pipe2");
  pid_t const pid = checked(fork(), "fork");
  if (pid == 0) {
    endBeforeTheChildCanTell();
    _exit(Supervisor([&shown] { return static_cast<int>(write(shown[1], "ran", 3)); }).run());
  }
  close(shown[1]);
  char byte = 0;
  EXPECT_EQ(read(shown[0], &byte, 1), 0) << "the agent ran without its supervisor";
  close(shown[0]);
  int status = 0;
  checked(waitpid(pid, &status, 0), "waitpid");
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST(Supervisor, SeesItsChildEndWhereChildrenAreIgnored) {
  auto const before = std::signal(SIGCHLD, SIG_IGN);
  SupervisorProcess supervisor([] { return 2; });
  std::signal(SIGCHLD, before);
  EXPECT_EQ(supervisor.ended(), 2);
}

}  // namespace
}  // namespace Kest::Agent
