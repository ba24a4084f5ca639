#include "agent/control/Turns.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <array>
#include <cerrno>
#include <new>
#include <system_error>
#include <utility>

namespace Kest::Agent {

namespace {

/// All that may be ready at once, so that those who come first are among them.
constexpr int mostEvents = 1024;

Text::Descriptor checked(int fd, char const* what) {
  if (fd < 0) throw std::system_error(errno, std::generic_category(), what);
  return Text::Descriptor(fd);
}

}  // namespace

Turns::Member::Member(Turns& turns, Taker& taker, int fd, bool comesFirst)
    : turns_(turns),
      taker_(taker),
      fd_(fd),
      comesFirst_(comesFirst),
      place_(turns.resting_.insert(turns.resting_.end(), this)) {}

Turns::Member::~Member() {
  if (watched_ != 0) epoll_ctl(turns_.watcher_.fd(), EPOLL_CTL_DEL, fd_, nullptr);
  Queue& queue = !isReady_ ? turns_.resting_ : comesFirst_ ? turns_.first_ : turns_.others_;
  queue.erase(place_);
}

void Turns::Member::watch(std::uint32_t events) {
  if (events == watched_) return;
  // One that is watched for nothing would still be told of as broken, again and again.
  int const change = events == 0 ? EPOLL_CTL_DEL : watched_ == 0 ? EPOLL_CTL_ADD : EPOLL_CTL_MOD;
  epoll_event event{};
  event.events = events;
  event.data.ptr = this;
  if (epoll_ctl(turns_.watcher_.fd(), change, fd_, &event) != 0) throw std::bad_alloc();
  watched_ = events;
}

void Turns::Member::ready() noexcept {
  if (isReady_) return;
  isReady_ = true;
  if (!turns_.isInRound_) turns_.alarmIs(true);
  Queue& queue = comesFirst_ ? turns_.first_ : turns_.others_;
  queue.splice(queue.end(), turns_.resting_, place_);
}

Turns::Turns(ActivityLoop& loop)
    : loop_(loop),
      watcher_(checked(epoll_create1(EPOLL_CLOEXEC), "epoll_create1")),
      alarm_(checked(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC), "eventfd")) {
  epoll_event event{};
  event.events = EPOLLIN;
  if (epoll_ctl(watcher_.fd(), EPOLL_CTL_ADD, alarm_.fd(), &event) != 0) {
    throw std::system_error(errno, std::generic_category(), "epoll_ctl");
  }
  loop_.fdIs(watcher_.fd(), [this] { round(); });
}

Turns::~Turns() {
  loop_.fdDel(watcher_.fd());
}

void Turns::alarmIs(bool on) noexcept {
  if (std::exchange(isAlarmOn_, on) == on) return;
  eventfd_t count = 1;
  if (on) {
    eventfd_write(alarm_.fd(), count);
  } else {
    eventfd_read(alarm_.fd(), &count);
  }
}

/// Whatever ends the round, the alarm is on after it if turns are left over.
class Turns::Round {
 public:
  explicit Round(Turns& turns) : turns_(turns) { turns_.isInRound_ = true; }
  Round(Round const&) = delete;
  Round& operator=(Round const&) = delete;
  ~Round() {
    turns_.isInRound_ = false;
    turns_.alarmIs(!turns_.isIdle());
  }

 private:
  Turns& turns_;
};

void Turns::round() {
  Round const inRound(*this);
  Seconds const end = Mox::now() + budget;
  collect();
  while (!isIdle()) {
    takeOne();
    if (Mox::now() >= end) break;
  }
}

void Turns::collect() {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the system fills in what is read
  std::array<epoll_event, mostEvents> events;
  int const count = epoll_wait(watcher_.fd(), events.data(), mostEvents, 0);
  for (int i = 0; i < count; ++i) {
    if (auto* const member = static_cast<Member*>(events[static_cast<std::size_t>(i)].data.ptr)) {
      member->ready();
    }
  }
}

/// The turn may end the member's life.
void Turns::takeOne() {
  Queue& queue = nextQueue();
  Member& member = *queue.front();
  resting_.splice(resting_.end(), queue, queue.begin());
  member.isReady_ = false;
  member.taker_.turn();
}

Turns::Queue& Turns::nextQueue() {
  if (first_.empty() || (isOthersTurn_ && !others_.empty())) {
    isOthersTurn_ = false;
    return others_;
  }
  if (firstLeft_ == 0) firstLeft_ = first_.size();
  isOthersTurn_ = --firstLeft_ == 0;
  return first_;
}

}  // namespace Kest::Agent
