#include "sm/detail/Points.h"

#undef NDEBUG  // assertions are active in every build; <cassert> declares the report only then
#include <cassert>

namespace Hardware::Kest::Slice::detail {

void assertionFailed(char const* expression, Handler const& handler, unsigned lineNumber) {
  __assert_fail(expression, source, lineNumber, handler.signature);
}

Mox::LogHandle const& deviceStateError() {
  static Mox::LogHandle const message(
      "KEST_DMA_DEVICE_STATE_ERROR", 3, "%s expected state: %s, actual state: %s",
      "Device up/down state changed unexpectedly. Forwarding agent restarted in order to recover "
      "from this error.",
      Mox::NoActionRequired, 0.0, 1.0, 0);
  return message;
}

}  // namespace Hardware::Kest::Slice::detail
