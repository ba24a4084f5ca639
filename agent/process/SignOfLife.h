#pragma once

#include <array>
#include <string_view>

#include "platform/mox/Clock.h"

namespace Kest::Agent {

/// Tells the watcher of this process, if there is one, that the process does not hang. Never
/// blocks. The activity gives a sign every few seconds, and one before each call to the driver,
/// because a handler may retry for a minute.
void giveSignOfLife() noexcept;

/// From now on each sign of life writes this text to this descriptor; -1: none is given. Both must
/// stay valid until the next call.
void signsOfLifeGoTo(int fd, std::string_view sign) noexcept;

/// A pipe that carries signs of life from a process to the one that forked it. Each process holds,
/// and closes, its own copy.
class LifeLine {
 public:
  /// @throw std::system_error when no pipe can be made
  LifeLine();
  LifeLine(LifeLine const&) = delete;
  LifeLine& operator=(LifeLine const&) = delete;
  ~LifeLine();

  /// In the watched process: its signs of life go here from now on.
  void isWatched() const noexcept;
  /// In the watching process: whether a sign has come since the last call.
  bool taken() const noexcept;

 private:
  std::array<int, 2> ends_{};
};

/// Gives a sign of life every few seconds, as long as the clock is dispatched. Held through
/// `Mox::Ptr`; `notifierIs(nullptr)` ends it.
class Heartbeat : public Mox::Clock::NotifieeConst {
 public:
  explicit Heartbeat(Mox::Ptr<Mox::Clock> const& clock);
  void onTime() override;
};

}  // namespace Kest::Agent
