#include "test/agent/support/AgentProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <termios.h>
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

constexpr int deadlineMilliseconds = 120000;  // for the next byte of output

void check(int result, char const* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
}

std::vector<char*> pointers(std::vector<std::string> const& texts) {
  std::vector<char*> all;
  for (std::string const& text : texts) all.push_back(const_cast<char*>(text.data()));
  all.push_back(nullptr);
  return all;
}

}  // namespace

/// In the new process: becomes the agent.
void AgentProcess::Start::become() const {
  Environment all = environment;
  all.emplace("TERM", "xterm");
  all.emplace("KEST_SLICE_AGENT_SOCKET", "control.sock");  // in its own directory
  std::vector<std::string> variables;
  for (auto const& [name, value] : all) variables.push_back(name + "=" + value);
  for (char const* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
    char const* const value = std::getenv(name);
    if (value != nullptr) variables.push_back(std::string(name) + "=" + value);
  }
  close_range(STDERR_FILENO + 1, ~0U, 0);  // what the tests' own parent left open counts too
  rlimit const limit{mostDescriptors, mostDescriptors};
  bool const isReady = (mostDescriptors == 0 || setrlimit(RLIMIT_NOFILE, &limit) == 0) &&
                       chdir(directory.c_str()) == 0;
  if (isReady) execve(KEST_AGENT, pointers(command).data(), pointers(variables).data());
  _exit(127);
}

AgentProcess::AgentProcess(std::string const& directory, std::vector<std::string> arguments,
                           Output output, Environment environment, std::size_t mostDescriptors) {
  arguments.insert(arguments.begin(), "kest-slice-agent");
  Start const start{directory, std::move(arguments), std::move(environment), mostDescriptors};
  if (output == Output::pipes) {
    startOnPipes(start);
  } else {
    startOnTerminal(start);
  }
}

AgentProcess::~AgentProcess() {
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  for (int const fd : {output_.fd, errors_.fd}) {
    if (fd >= 0) close(fd);
  }
}

void AgentProcess::startOnPipes(Start const& start) {
  std::array<int, 2> out{};
  std::array<int, 2> err{};
  check(pipe2(out.data(), O_CLOEXEC), "pipe2");
  check(pipe2(err.data(), O_CLOEXEC), "pipe2");
  pid_ = fork();
  check(pid_, "fork");
  if (pid_ == 0) {
    dup2(out[1], STDOUT_FILENO);
    dup2(err[1], STDERR_FILENO);
    start.become();
  }
  close(out[1]);
  close(err[1]);
  output_.fd = out[0];
  errors_.fd = err[0];
}

void AgentProcess::startOnTerminal(Start const& start) {
  termios asWritten{};
  cfmakeraw(&asWritten);
  pid_ = forkpty(&output_.fd, nullptr, &asWritten, nullptr);
  check(pid_, "forkpty");
  if (pid_ == 0) start.become();
}

void AgentProcess::signalIs(int number) const {
  check(kill(pid_, number), "kill");
}

std::string AgentProcess::outputUntil(std::string const& text) {
  std::size_t at = 0;
  while ((at = output_.text.find(text)) == std::string::npos) {
    if (!readMore()) {
      throw std::runtime_error("the agent ended before it said '" + text + "' but said\n" +
                               output_.text + errors_.text);
    }
  }
  std::string taken = output_.text.substr(0, at + text.size());
  output_.text.erase(0, taken.size());
  return taken;
}

void AgentProcess::outputIsClosed() {
  close(std::exchange(output_.fd, -1));
}

void AgentProcess::errorsAreClosed() {
  close(std::exchange(errors_.fd, -1));
}

void AgentProcess::awaitEndUnread() const {
  int const process = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
  check(process, "pidfd_open");
  pollfd waiting{process, POLLIN, 0};
  int const ready = poll(&waiting, 1, deadlineMilliseconds);
  close(process);
  check(ready, "poll");
  if (ready == 0) throw std::runtime_error("the agent does not end");
}

int AgentProcess::ended() {
  while (readMore()) {
  }
  int status = 0;
  check(waitpid(std::exchange(pid_, -1), &status, 0), "waitpid");
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

/// Waits for output; false when both streams have ended.
bool AgentProcess::readMore() {
  if (output_.fd < 0 && errors_.fd < 0) return false;
  std::array<pollfd, 2> waiting = {pollfd{output_.fd, POLLIN, 0}, pollfd{errors_.fd, POLLIN, 0}};
  int const ready = poll(waiting.data(), waiting.size(), deadlineMilliseconds);
  check(ready, "poll");
  if (ready == 0) throw std::runtime_error("the agent says nothing more but\n" + output_.text);
  for (Stream* stream : {&output_, &errors_}) {
    if (waiting[stream == &output_ ? 0 : 1].revents == 0) continue;
    std::array<char, 4096> block{};
    ssize_t const bytes = read(stream->fd, block.data(), block.size());
    if (bytes > 0) {
      stream->text.append(block.data(), static_cast<std::size_t>(bytes));
    } else {  // a terminal that nobody has open any more answers with an error
      close(std::exchange(stream->fd, -1));
    }
  }
  return true;
}

}  // namespace Kest::Agent
