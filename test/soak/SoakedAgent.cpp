#include "test/soak/SoakedAgent.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace Kest::Soak {

namespace {

constexpr std::chrono::seconds patience{300};  // covers the slice being applied
constexpr std::chrono::milliseconds lookAgain{20};

int checked(int result, char const* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

[[noreturn]] void become(std::string const& program, std::vector<std::string> arguments,
                         int errors) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  int const output = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (dup2(output, STDOUT_FILENO) >= 0 && dup2(errors, STDERR_FILENO) >= 0) {
    execv(program.c_str(), pointers.data());
  }
  _exit(127);
}

}  // namespace

void raiseDescriptorLimit() {
  rlimit limit{};
  checked(getrlimit(RLIMIT_NOFILE, &limit), "getrlimit");
  limit.rlim_cur = limit.rlim_max;
  checked(setrlimit(RLIMIT_NOFILE, &limit), "setrlimit");
}

SoakedAgent::SoakedAgent(std::string const& program, std::string const& sliceFile,
                         std::string const& preloaded) {
  constexpr mode_t everyoneMayPass = 0711;  // to the socket
  checked(chmod(folder_.path().c_str(), everyoneMayPass), "chmod");
  std::array<int, 2> errors{};
  checked(pipe2(errors.data(), O_CLOEXEC), "pipe2");
  pid_ = checked(fork(), "fork");
  if (pid_ == 0) {
    if (!preloaded.empty()) setenv("LD_PRELOAD", preloaded.c_str(), 1);
    become(program,
           {"kest-slice-agent", "--control", socketPath(), "--control-mode", "666", "--poll",
            "--trace", "KestSliceDma/8", sliceFile},
           errors[1]);
  }
  close(errors[1]);
  reader_ = std::thread([this, fd = errors[0]] { readErrors(fd); });
}

SoakedAgent::~SoakedAgent() {
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  reader_.join();
}

void SoakedAgent::readErrors(int fd) {
  std::string text;
  std::array<char, 4096> block{};
  for (ssize_t bytes; (bytes = read(fd, block.data(), block.size())) > 0;) {
    Clock::time_point const now = Clock::now();
    text.append(block.data(), static_cast<std::size_t>(bytes));
    std::lock_guard const lock(mutex_);
    for (std::size_t end; (end = text.find('\n')) != std::string::npos; text.erase(0, end + 1)) {
      std::string_view const line = std::string_view(text).substr(0, end + 1);
      bool const isTrace = line.starts_with("KestSliceDma 8 ");
      if (!isTrace) complaints_ += line;
      if (isTrace && line.find(" handleTimerExpired ") != line.npos) polls_.push_back(now);
    }
  }
  close(fd);
  std::lock_guard const lock(mutex_);
  complaints_ += text;
  hasEnded_ = true;
}

std::size_t SoakedAgent::polls() const {
  std::lock_guard const lock(mutex_);
  return polls_.size();
}

SoakedAgent::Milliseconds SoakedAgent::worstLateness(std::size_t from) const {
  constexpr std::chrono::seconds period{2};
  std::lock_guard const lock(mutex_);
  Milliseconds worst{0};
  for (std::size_t i = std::max<std::size_t>(from, 1); i < polls_.size(); ++i) {
    worst = std::max<Milliseconds>(worst, polls_[i] - polls_[i - 1] - period);
  }
  return worst;
}

void SoakedAgent::awaitPoll(std::size_t known) const {
  auto const deadline = Clock::now() + patience;
  while (polls() <= known) {
    if (hasEnded()) throw std::runtime_error("the agent ended: " + complaints());
    if (Clock::now() > deadline) throw std::runtime_error("the agent does not poll");
    std::this_thread::sleep_for(lookAgain);
  }
}

std::string SoakedAgent::complaints() const {
  std::lock_guard const lock(mutex_);
  return complaints_;
}

bool SoakedAgent::hasEnded() const {
  std::lock_guard const lock(mutex_);
  return hasEnded_;
}

std::size_t SoakedAgent::residentKilobytes() const {
  std::ifstream status("/proc/" + std::to_string(pid_) + "/status");
  for (std::string word; status >> word;) {
    std::size_t kilobytes = 0;
    if (word == "VmRSS:" && status >> kilobytes) return kilobytes;
  }
  throw std::runtime_error("the agent has no memory any more");
}

int SoakedAgent::end() {
  checked(kill(pid_, SIGTERM), "kill");
  int status = 0;
  checked(waitpid(std::exchange(pid_, -1), &status, 0), "waitpid");
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace Kest::Soak
