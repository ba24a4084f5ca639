#include "sm/detail/End.h"

#include <cstdio>
#include <cstdlib>

namespace Hardware::Kest::Slice::detail {

void endProcess(char const* why) noexcept {
  std::fprintf(stderr, "%s\n", why);
  std::abort();
}

}  // namespace Hardware::Kest::Slice::detail
