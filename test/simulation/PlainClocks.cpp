#include <algorithm>
#include <limits>

#include "test/simulation/PlainWorld.h"

namespace Simulation {

void PlainWorld::timerRegisteredIs(unsigned timer, bool on) {
  PlainTimer& self = state.timers[timer];
  if (self.registered == on) return;
  self.registered = on;
  if (self.notifier == nobody) return;
  auto& listed = state.listedTimers[static_cast<unsigned>(self.notifier)];
  if (on) {
    listed.push_back(static_cast<std::uint8_t>(timer));
  } else {
    std::erase(listed, timer);
  }
}

void PlainWorld::timerNotifierIs(unsigned timer, int clock) {
  bool const registered = state.timers[timer].registered;
  timerRegisteredIs(timer, false);
  state.timers[timer].notifier = clock;
  timerRegisteredIs(timer, registered);
}

/// Replaces the timer that may be there. The new one is due at once.
void PlainWorld::newTimer(unsigned timer, unsigned clock) {
  dropTimer(timer);
  PlainTimer& self = state.timers[timer];
  self.held = true;
  self.notifier = static_cast<int>(clock);
  timerRegisteredIs(timer, true);
}

void PlainWorld::dropTimer(unsigned timer) {
  PlainTimer& self = state.timers[timer];
  timerRegisteredIs(timer, false);
  std::uint32_t const next = self.generation + 1;
  self = PlainTimer();
  self.generation = next;
}

void PlainWorld::pass(std::int64_t microseconds) {
  state.microseconds += microseconds;
  for (unsigned clock = 0; clock < clockCount; ++clock) dispatch(clock);
}

/// Wakes the timers that are due at the start, by wake-up time and then in order of registration. A
/// timer that is gone, has left or is no longer due at its turn is skipped.
void PlainWorld::dispatch(unsigned clock) {
  struct Due {
    unsigned timer;
    std::uint32_t generation;
    double timeMin;
  };
  std::vector<Due> due;
  for (unsigned const timer : state.listedTimers[clock]) {
    PlainTimer const& self = state.timers[timer];
    reachIf(self.zombie && self.timeMin <= now(), Probe::timerSilentAsZombie);
    if (!self.zombie && self.timeMin <= now())
      due.push_back({timer, self.generation, self.timeMin});
  }
  double const start = now();
  auto const byTime = [](Due const& a, Due const& b) { return a.timeMin < b.timeMin; };
  reachIf(!std::is_sorted(due.begin(), due.end(), byTime), Probe::timersInOrderOfTime);
  std::stable_sort(due.begin(), due.end(), byTime);
  for (Due const& one : due) {
    PlainTimer& self = state.timers[one.timer];
    bool const stillDue = self.generation == one.generation && self.registered && !self.zombie &&
                          self.notifier == static_cast<int>(clock) && self.timeMin <= start;
    reachIf(!stillDue, Probe::timerReleasedOrMovedBeforeItsTurn);
    if (!stillDue) continue;
    reachIf(self.timeMin == 0, Probe::timerDueAtOnce);
    self.timeMin = std::numeric_limits<double>::infinity();
    wake(one.timer);
  }
}

void PlainWorld::wake(unsigned timer) {
  if (timer == 0) {
    try {
      handleTimerExpired();
    } catch (Thrown const&) {
      reach(Probe::pollEndsByException);
    }
    return;
  }
  try {
    line("timer ", timer - 1, " woken");
    planned(observerCount + timer - 1);
    return;
  } catch (Thrown const&) {
  }
  try {
    line("timer ", timer - 1, " told: exception 258");
    planned(observerCount + timer - 1);
  } catch (Thrown const&) {
  }
}

}  // namespace Simulation
