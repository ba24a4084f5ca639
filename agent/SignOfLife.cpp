#include "agent/SignOfLife.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "agent/Output.h"

namespace Kest::Agent {

namespace {

int watcher = -1;  // where signs of life go
std::string_view signForWatcher;

}  // namespace

void giveSignOfLife() noexcept {
  if (watcher >= 0) writeAtOnce(watcher, signForWatcher);  // a full pipe holds signs enough
}

void signsOfLifeGoTo(int fd, std::string_view sign) noexcept {
  watcher = fd;
  signForWatcher = sign;
}

LifeLine::LifeLine() {
  if (pipe2(ends_.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe2");
  }
}

LifeLine::~LifeLine() {
  if (watcher == ends_[1]) watcher = -1;
  for (int const end : ends_) close(end);
}

void LifeLine::isWatched() const noexcept {
  signsOfLifeGoTo(ends_[1], ".");
}

bool LifeLine::taken() const noexcept {
  std::array<char, 256> signs{};
  bool any = false;
  while (read(ends_[0], signs.data(), signs.size()) > 0) any = true;
  return any;
}

Heartbeat::Heartbeat(Mox::Ptr<Mox::Clock> const& clock) {
  notifierIs(clock);
  isRegisteredNotifieeIs(true);
}

void Heartbeat::onTime() {
  constexpr Mox::Seconds period = 2;  // a few in each look of a watcher
  giveSignOfLife();
  timeMinIs(Mox::now() + period);
}

}  // namespace Kest::Agent
