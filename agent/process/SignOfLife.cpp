#include "agent/process/SignOfLife.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "agent/process/Output.h"

namespace Kest::Agent {

namespace {

int lifeWatcher = -1;  // where signs of life go
std::string_view lifeSign;

}  // namespace

void giveSignOfLife() noexcept {
  if (lifeWatcher >= 0)
    writeAtOnce(lifeWatcher, OutputKind::other, lifeSign);  // a full pipe holds signs enough
}

void signsOfLifeGoTo(int fd, std::string_view sign) noexcept {
  lifeWatcher = fd;
  lifeSign = sign;
}

LifeLine::LifeLine() {
  if (pipe2(ends_.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe2");
  }
}

LifeLine::~LifeLine() {
  if (lifeWatcher == ends_[1]) lifeWatcher = -1;
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
  constexpr Seconds period = 2;  // watchers look less often
  giveSignOfLife();
  timeMinIs(Mox::now() + period);
}

}  // namespace Kest::Agent
