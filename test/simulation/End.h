#pragma once

#include <functional>
#include <string>

namespace Simulation {

/// Runs `work()` in a process of its own; how that ended, as `waitpid` tells it: 0 for one that
/// came to the end of `work`.
int statusOf(std::function<void()> const& work);

/// How a process of its own ended.
struct End {
  int signal = 0;    // 0: it did not end by one
  std::string text;  // what it wrote to standard error
};

/// Runs `work()` in a process of its own. One that comes to the end of `work` has not ended by a
/// signal.
End endOf(std::function<void()> const& work);

}  // namespace Simulation
