#pragma once

#include <functional>
#include <utility>

#include "platform/mox/Clock.h"

namespace Kest::Agent {

/// Calls a function at the time that `timeMinIs` sets. Held through
/// `Mox::Ptr`; `notifierIs(nullptr)` ends it.
class Alarm final : public Mox::Clock::NotifieeConst {
 public:
  Alarm(Mox::Ptr<Mox::Clock> const& clock, std::function<void()> due) : due_(std::move(due)) {
    timeMinIs(Mox::never);
    notifierIs(clock);
    isRegisteredNotifieeIs(true);
  }

 private:
  void onTime() override { due_(); }

  std::function<void()> due_;
};

}  // namespace Kest::Agent
