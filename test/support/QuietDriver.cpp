// What a driver offers, visible to who loads it.
#pragma GCC visibility push(default)
#include "driver/KestDma.h"
#pragma GCC visibility pop

/// A driver that takes no memory, does whatever it is asked, and keeps nothing of it. On its own it
/// lacks one operation, kestDmaIsDeviceUp; that is in QuietDriverIsDeviceUp.cpp.
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

void kestDmaDump() {}

}  // namespace Hardware::Kest
