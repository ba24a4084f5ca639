#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>

#include "driver/sim/SimDriver.h"
#include "platform/fru/PciHam.h"
#include "platform/mox/Ptr.h"

namespace Hardware::Kest::Sim {

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

/// A new directory, gone with all that is in it.
class TempFolder {
 public:
  TempFolder() {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("mkdtemp " + path_);
  }
  TempFolder(TempFolder const&) = delete;
  TempFolder& operator=(TempFolder const&) = delete;
  ~TempFolder() { std::filesystem::remove_all(path_); }

  std::string const& path() const { return path_; }
  std::string file(std::string const& name) const { return path_ + "/" + name; }
  std::set<std::string> names() const {
    std::set<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(path_)) {
      names.insert(entry.path().filename());
    }
    return names;
  }

 private:
  std::string path_ = testing::TempDir() + "kest_sim_XXXXXX";
};

/// Empty when there is no such file.
inline std::string contentOf(std::string const& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// The state that is in a file, as a document; empty when there is no such file.
inline std::string stateIn(std::string const& path) {
  std::string const text = contentOf(path);
  return text.empty() ? "" : stateText(readState(text, path));
}

}  // namespace Hardware::Kest::Sim
