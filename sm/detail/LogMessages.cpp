#include "sm/detail/LogMessages.h"

namespace Hardware::Kest::Slice::detail {

Mox::LogHandle const& deviceStateError() {
  static Mox::LogHandle const message(
      "KEST_DMA_DEVICE_STATE_ERROR", 3, "%s expected state: %s, actual state: %s",
      "Device up/down state changed unexpectedly. Forwarding agent restarted in order to recover "
      "from this error.",
      Mox::NoActionRequired, 0.0, 1.0, 0);
  return message;
}

}  // namespace Hardware::Kest::Slice::detail
