#pragma once

#include <gtest/gtest.h>

#include <string>

#include "driver/sim/SimDriver.h"
#include "platform/fru/PciHam.h"
#include "platform/mox/Ptr.h"
#include "test/support/Files.h"

namespace Hardware::Kest::Sim {

using Support::contentOf;
using Support::TempFolder;

inline Mox::Ptr<Fru::PciHam const> pciHam(char const* address) {
  return Mox::Ptr<Fru::PciHam const>(new Fru::PciHam(address));
}

inline InterfaceParam portOn(char const* devName, int fapNum,
                             char const* macAddr = "00:1c:73:0a:0b:0c") {
  return {7, -1, 2, devName, fapNum, true, false, macAddr};
}

inline DeviceParam faps(unsigned numFaps) {
  return {numFaps, FapType::fapTypeArad_, 1, 2, 3, 4, 5, 6, 7};
}

/// A slice with the device 'fap0', registered with two FAPs, and down.
inline void addFap0(SimDriver& driver) {
  driver.deviceRename("fap0", pciHam("0000:05:00.0"));
  driver.deviceParam("fap0", faps(2));
}

/// The state that is in a file, as a document; empty when there is no such file.
inline std::string stateIn(std::string const& path) {
  std::string const text = contentOf(path);
  return text.empty() ? "" : stateText(readState(text, path));
}

}  // namespace Hardware::Kest::Sim
