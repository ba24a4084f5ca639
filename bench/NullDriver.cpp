#include <unistd.h>

#include <ctime>

// What the library asks of its driver, visible to it.
#pragma GCC visibility push(default)
#include "driver/KestDma.h"
#pragma GCC visibility pop

/// A driver whose operations do nothing, so that what the library does beside them shows: every
/// interface can be made, every device is up.
namespace Hardware::Kest {

int kestDmaIfadd(char const*, int, int, int, Mox::String8, int, bool, bool, char const*) {
  return 0;
}

int kestDmaIfdel(char const*) {
  return 0;
}

int kestDmaNativeVlan(char const*, bool, unsigned short) {
  return 0;
}

int kestDmaDeviceRename(Mox::String8, Mox::Ptr<Fru::PciHam const>) {
  return 0;
}

int kestDmaDeviceParam(Mox::String8, unsigned, FapType, unsigned, unsigned, unsigned, unsigned,
                       unsigned, unsigned, unsigned) {
  return 0;
}

int kestDmaDeviceDown(Mox::String8) {
  return 0;
}

int kestDmaDeviceUp(Mox::String8) {
  return 0;
}

int kestDmaIsDeviceUp(Mox::String8, bool* up) {
  *up = true;
  return 0;
}

void kestDmaDump() {}

}  // namespace Hardware::Kest

// In the place of the system's, for the libraries of the program: pauses take no time.

extern "C" __attribute__((visibility("default"))) std::time_t time(std::time_t* result) noexcept {
  constexpr std::time_t always = 1700000000;
  if (result != nullptr) *result = always;
  return always;
}

extern "C" __attribute__((visibility("default"))) int usleep(useconds_t /*microseconds*/) {
  return 0;
}
