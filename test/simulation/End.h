#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

namespace Simulation {

/// How a process of its own ended.
struct End {
  int signal = 0;         // 0: it did not end by one
  std::string_view text;  // what it left; valid until the next one
};

/// Runs `work(text, size)` in a process of its own, which leaves a NUL-terminated text there. A
/// process that comes to the end of `work` has not ended by a signal.
End endOf(std::function<void(char* text, std::size_t size)> const& work);

}  // namespace Simulation
