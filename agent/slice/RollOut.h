#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>

#include "agent/process/ActivityLoop.h"
#include "agent/process/Console.h"
#include "agent/slice/Comparison.h"

namespace Kest::Agent {

/// Brings the running configuration in line with another one: compares the two in pieces, and
/// applies the changes one at a time, a round of the activity loop each, so that signals, timers
/// and clients come in between. A port takes the driver 100 ms or more.
class RollOut {
 public:
  /// Told what is to change, before anything does; false when it is not to be applied.
  using Decide = std::function<bool(Changes const& changes)>;
  /// Told how many changes were applied, and how many entries were alike.
  using Done = std::function<void(std::size_t announced, std::size_t unchanged)>;

  RollOut(ActivityLoop& loop, Console& console, Mox::Ptr<Config> config, bool verbose);

  bool isRunning() const noexcept { return running_; }

  /// Starts in the next round. `done` follows the last change, unless `decide` has refused. None
  /// may be running.
  void start(Mox::Ptr<Config const> wanted, Decide decide, Done done);

  /// Applies nothing more, for good; `done` does not follow.
  void abandon();

 private:
  using Work = void (RollOut::*)();

  void later(Work work);
  void compare();
  void begin(Changes changes);
  void step();
  void show(Change const& change);

  ActivityLoop& loop_;
  Console& console_;
  Mox::Ptr<Config> config_;
  bool verbose_;
  bool running_ = false;
  std::unique_ptr<Comparison> comparison_;  // while the two are compared
  Decide decide_;
  Changes changes_;  // whose steps go as they are applied
  std::size_t stepsTotal_ = 0;
  std::size_t portsDone_ = 0;
  Done done_;
};

}  // namespace Kest::Agent
