// What the library asks of its driver, visible to it.
#pragma GCC visibility push(default)
#include "driver/KestDma.h"
#pragma GCC visibility pop

/// The ninth operation of the quiet driver.
namespace Hardware::Kest {

int kestDmaIsDeviceUp(Mox::String8, bool* up) {
  *up = true;
  return 0;
}

}  // namespace Hardware::Kest
