#include "agent/process/ActivityLoop.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <initializer_list>
#include <system_error>
#include <utility>
#include <vector>

namespace Kest::Agent {

namespace {

/// What is told of it whatever it is watched for.
constexpr short broken = POLLERR | POLLHUP | POLLNVAL;

/// Rounded up, so that the loop does not spin before a wake-up; -1 is for ever.
int pollMilliseconds(Seconds seconds) {
  constexpr Seconds longest = 3600;
  if (seconds == Mox::never) return -1;
  return static_cast<int>(std::ceil(std::clamp(seconds, 0.0, longest) * 1000));
}

[[noreturn]] void refuse(int error, char const* what) {
  throw std::system_error(error, std::generic_category(), what);
}

/// How many of `waiting` are ready: none when the time is up or a signal came between.
int wait(std::vector<pollfd>& waiting, Seconds time) {
  int const ready = poll(waiting.data(), waiting.size(), pollMilliseconds(time));
  if (ready >= 0) return ready;
  if (errno != EINTR) refuse(errno, "poll");
  return 0;
}

sigset_t setOf(int number) {
  sigset_t set;
  sigemptyset(&set);
  if (sigaddset(&set, number) != 0 || number == SIGKILL || number == SIGSTOP) {
    refuse(EINVAL, "no signal to wait for");
  }
  return set;
}

/// Blocks one signal for this thread; returns whether it was blocked already.
bool block(int number) {
  sigset_t const set = setOf(number);
  sigset_t old;
  int const error = pthread_sigmask(SIG_BLOCK, &set, &old);
  if (error != 0) refuse(error, "pthread_sigmask");
  return sigismember(&old, number) == 1;
}

auto shared(ActivityLoop::Work work) {
  return std::make_shared<ActivityLoop::Work const>(std::move(work));
}

}  // namespace

ActivityLoop::ActivityLoop(Mox::Ptr<Mox::Clock> clock) : clock_(std::move(clock)) {}

ActivityLoop::~ActivityLoop() {
  if (signalFd_ >= 0) close(signalFd_);
  sigset_t blocked;
  sigemptyset(&blocked);
  for (auto const& [number, signal] : signals_) {
    if (!signal.wasBlocked) sigaddset(&blocked, number);
  }
  pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
}

void ActivityLoop::fdIs(int fd, Work work) {
  watches_.insert_or_assign({fd, POLLIN}, Watch{shared(std::move(work)), ++additions_});
}

void ActivityLoop::fdDel(int fd) {
  watches_.erase({fd, POLLIN});
}

void ActivityLoop::fdWritableIs(int fd, Work work) {
  watches_.insert_or_assign({fd, POLLOUT}, Watch{shared(std::move(work)), ++additions_});
}

void ActivityLoop::fdWritableDel(int fd) {
  watches_.erase({fd, POLLOUT});
}

void ActivityLoop::signalIs(int number, Work work) {
  auto const known = signals_.find(number);
  if (known != signals_.end()) {
    known->second.work = shared(std::move(work));
    return;
  }
  sigset_t taken = setOf(number);
  for (auto const& [other, signal] : signals_) sigaddset(&taken, other);
  auto const added = signals_.emplace(number, Signal{shared(std::move(work)), false}).first;
  int const fd = signalfd(signalFd_, &taken, SFD_NONBLOCK | SFD_CLOEXEC);
  if (fd < 0) {
    int const error = errno;
    signals_.erase(added);
    refuse(error, "signalfd");
  }
  signalFd_ = fd;
  added->second.wasBlocked = block(number);
}

void ActivityLoop::later(Work work) {
  later_.push_back(std::move(work));
}

void ActivityLoop::run() {
  while (!stopped_) runOnce(Mox::never);
  stopped_ = false;
}

void ActivityLoop::runOnce(Seconds timeout) {
  std::size_t const putOff = later_.size();
  std::uint64_t const before = additions_;
  std::vector<pollfd> waiting;
  waiting.push_back({signalFd_, POLLIN, 0});  // ignored while negative
  for (auto const& [watched, watch] : watches_) {
    auto const [fd, event] = watched;
    // One entry for a descriptor: poll takes no more entries than there may be descriptors.
    if (waiting.back().fd != fd) waiting.push_back({fd, 0, 0});
    waiting.back().events = static_cast<short>(waiting.back().events | event);
  }
  int const ready = wait(waiting, waitTime(timeout));

  if (ready > 0) {
    if (waiting.front().revents != 0) takeSignals();
    for (auto at = waiting.begin() + 1; at != waiting.end(); ++at) {
      for (short const event : std::initializer_list<short>{POLLIN, POLLOUT}) {
        if ((at->revents & (event | broken)) != 0) runWatch({at->fd, event}, before);
      }
    }
  }
  if (clock_) clock_->dispatch();
  for (std::size_t i = 0; i < putOff; ++i) {
    Work const work = std::move(later_.front());
    later_.pop_front();
    carryOut(work);
  }
}

void ActivityLoop::carryOut(Work const& work) {
  work();
  if (clock_) clock_->dispatch();
}

Seconds ActivityLoop::waitTime(Seconds timeout) const {
  if (!later_.empty()) return 0;
  if (!clock_) return timeout;
  return std::min(timeout, Mox::timeSource().waitTime(clock_->timeMin()));
}

void ActivityLoop::runWatch(Watched watched, std::uint64_t lastAddition) {
  auto const found = watches_.find(watched);
  if (found == watches_.end() || found->second.number > lastAddition) return;
  SharedWork const work = found->second.work;
  carryOut(*work);
}

void ActivityLoop::takeSignals() {
  signalfd_siginfo info{};
  while (read(signalFd_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
    SharedWork const work = signals_.at(static_cast<int>(info.ssi_signo)).work;
    carryOut(*work);
  }
  if (errno != EAGAIN && errno != EINTR) refuse(errno, "signalfd");
}

}  // namespace Kest::Agent
