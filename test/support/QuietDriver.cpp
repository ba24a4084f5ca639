/// A driver that takes no memory, does whatever it is asked, and keeps nothing of it. Its devices
/// are up. With KEST_LACKS_IS_DEVICE_UP it lacks that operation.
namespace Hardware::Kest {

static int driven(char const*, auto const&...) {
  return 0;
}

static int driven(char const*, auto*, auto const&, bool* up) {
  *up = true;
  return 0;
}

}  // namespace Hardware::Kest

#include "test/support/DriverOperations.h"
