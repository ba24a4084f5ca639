#pragma once

#include <cstddef>
#include <deque>
#include <functional>

#include "agent/Changes.h"
#include "agent/Console.h"
#include "platform/mox/ActivityLoop.h"

namespace Kest::Agent {

/// Applies changes to the running configuration one at a time, a round of the activity loop each,
/// so that signals and timers come in between: a port takes the driver 100 ms or more.
class Application {
 public:
  using Work = std::function<void()>;

  Application(Mox::ActivityLoop& loop, Console& console, Mox::Ptr<Config> config, bool verbose);

  bool isRunning() const noexcept { return running_; }

  /// Starts on `changes`, with `done` to follow the last one. None may be running.
  void start(Changes changes, Work done);

  /// Applies nothing more, for good; `done` does not follow.
  void abandon();

 private:
  void step();
  void show(Change const& change);

  Mox::ActivityLoop& loop_;
  Console& console_;
  Mox::Ptr<Config> config_;
  bool verbose_;
  bool running_ = false;
  std::deque<Change> pending_;
  std::size_t portsDone_ = 0;
  std::size_t portsTotal_ = 0;
  Work done_;
};

}  // namespace Kest::Agent
