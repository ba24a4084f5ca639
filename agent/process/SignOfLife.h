#pragma once

#include <array>
#include <string_view>

#include "platform/mox/Clock.h"

namespace Kest::Agent {

/// Tells whoever watches over this process that it does not hang; nothing happens when nobody does.
/// Never blocks. The activity gives one every few seconds, and one before each call to the driver,
/// because a handler may try again for a minute.
void giveSignOfLife() noexcept;

/// From now on a sign is this text, written to this descriptor. The descriptor is still used until
/// there is another one, or -1 for none; the text must last as long.
void signsOfLifeGoTo(int fd, std::string_view sign) noexcept;

/// What carries signs of life from a process to the one that forked it. Both may hold it; each
/// closes its own.
class LifeLine {
 public:
  /// `std::system_error` when there is no pipe to be had.
  LifeLine();
  LifeLine(LifeLine const&) = delete;
  LifeLine& operator=(LifeLine const&) = delete;
  ~LifeLine();

  /// In the process that is watched: its signs of life go here from now on.
  void isWatched() const noexcept;
  /// In the one that watches: whether a sign came since the last time.
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
