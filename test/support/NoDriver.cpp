#include <cstdlib>

// What the library asks of its driver, visible to it.
#pragma GCC visibility push(default)
#include "driver/KestDma.h"
#pragma GCC visibility pop

/// Lets a test program link the library whose state machine it never starts: there is no driver,
/// and to reach for one ends the program.
namespace Hardware::Kest {

int kestDmaIfadd(char const*, int, int, int, Mox::String8, int, bool, bool, char const*) {
  std::abort();
}

int kestDmaIfdel(char const*) {
  std::abort();
}

int kestDmaNativeVlan(char const*, bool, unsigned short) {
  std::abort();
}

int kestDmaDeviceRename(Mox::String8, Mox::Ptr<Fru::PciHam const>) {
  std::abort();
}

int kestDmaDeviceParam(Mox::String8, unsigned, FapType, unsigned, unsigned, unsigned, unsigned,
                       unsigned, unsigned, unsigned) {
  std::abort();
}

int kestDmaDeviceDown(Mox::String8) {
  std::abort();
}

int kestDmaDeviceUp(Mox::String8) {
  std::abort();
}

int kestDmaIsDeviceUp(Mox::String8, bool*) {
  std::abort();
}

void kestDmaDump() {
  std::abort();
}

}  // namespace Hardware::Kest
