#pragma once

#include <cstdio>
#include <cstdlib>

namespace Hardware::Kest::Slice::detail {

/// Says why in one line on standard error, and aborts: for what cannot be repaired in place. The
/// agent's restart is the recovery.
[[noreturn]] inline void endProcess(char const* why) noexcept {
  std::fprintf(stderr, "%s\n", why);
  std::abort();
}

}  // namespace Hardware::Kest::Slice::detail
