#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "platform/mox/Dir.h"
#include "test/model/RecordNames.h"

namespace Hardware::Kest::Slice {

/// For suites that are typed by record.
using AllRecords = testing::Types<ConfigSwitchPort, ConfigDevice, StatusSwitchPort, StatusDevice>;

using Random = std::mt19937_64;
using Handle = Mox::Ptr<Fru::PciHam const>;

/// A new handle called `name` in the directory at `path`.
inline Handle handleAt(char const* path, char const* name) {
  Mox::Ptr<Fru::PciHam> const handle(new Fru::PciHam(name));
  Mox::dirAt(path)->entityIs(handle);
  return handle;
}

/// The null handle and some that live in the directory tree.
inline std::vector<Handle> const& handles() {
  static std::vector<Handle> const all{
      nullptr, handleAt("/pci", "0000:05:00.0"), handleAt("/pci", "0000:06:00.0"),
      handleAt("/pci/behind 'it'", "\\a\n\x01\x7f\xc3\xa9"), handleAt("", "None")};
  return all;
}

/// A number below `bound`.
inline unsigned below(unsigned bound, Random& random) {
  return static_cast<unsigned>(random() % bound);
}

inline bool randomFlag(Random& random) {
  return below(2, random) == 1;
}

/// Up to 12 bytes, of any value or of those that mean something in a text.
inline Mox::String8 randomString(Random& random) {
  static constexpr std::string_view meaningful = "\\'\n\t\r ,:{}xn";
  std::string bytes(below(13, random), '\0');
  for (char& byte : bytes) {
    byte = randomFlag(random) ? static_cast<char>(below(256, random))
                              : meaningful[below(meaningful.size(), random)];
  }
  return Mox::String8(bytes);
}

/// Of any number of digits; now and then one of the two ends of the range.
inline std::uint32_t randomNumber(Random& random) {
  switch (below(8, random)) {
    case 0:
      return 0;
    case 1:
      return 0xffffffffU;
    default:
      return static_cast<std::uint32_t>(random()) >> below(32, random);
  }
}

inline Pelk::EthAddr randomEthAddr(Random& random) {
  Pelk::EthAddr::Octets octets;
  for (auto& octet : octets) octet = static_cast<std::uint8_t>(below(256, random));
  return Pelk::EthAddr(octets);
}

inline void fillAtRandom(ConfigSwitchPort& record, Random& random) {
  record.ifNameIs(randomString(random));
  record.destIdIs(randomNumber(random));
  record.shadowIntfIdIs(randomNumber(random));
  record.trafficClassIs(randomNumber(random));
  record.devNameIs(randomString(random));
  record.fapNumIs(randomNumber(random));
  record.ctrlIs(randomFlag(random));
  record.hwLagIs(randomFlag(random));
  record.macAddrIs(randomEthAddr(random));
}

inline void fillAtRandom(ConfigDevice& record, Random& random) {
  record.devNameIs(randomString(random));
  record.pciHamIs(handles()[below(static_cast<unsigned>(handles().size()), random)]);
  record.fapTypeIs(static_cast<Hardware::Kest::FapType>(below(3, random)));
  record.numFapsIs(1 + below(3, random));
  record.cpuTmSysPortIs(randomNumber(random));
  record.cpuEthSysPortIs(randomNumber(random));
  record.cpuRawSysPortIs(randomNumber(random));
  record.sflowPortIs(randomNumber(random));
  record.cpuAradSysPortIs(randomNumber(random));
  record.cpuAradIs(randomNumber(random));
  record.cpuAradBridgeIs(randomNumber(random));
}

inline void fillAtRandom(StatusSwitchPort& record, Random& random) {
  record.ifNameIs(randomString(random));
  record.createdIs(randomFlag(random));
}

inline void fillAtRandom(StatusDevice& record, Random& random) {
  record.devNameIs(randomString(random));
  record.registeredIs(randomFlag(random));
}

template <class Record>
Record randomRecord(Random& random) {
  Record record;
  fillAtRandom(record, random);
  return record;
}

/// The record that `text` says.
template <class Record>
Record read(std::string_view text) {
  return Mox::strepToValue<Record>(Mox::String8(text));
}

/// Around the fields of a record's text.
inline constexpr char const* configSwitchPortHead =
    "Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {";
inline constexpr char const* configDeviceHead =
    "Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {";
inline constexpr char const* statusSwitchPortHead =
    "Value('Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort', ** {";
inline constexpr char const* statusDeviceHead =
    "Value('Hardware::Kest::Slice::KestSliceDmaStatus::Device', ** {";
inline constexpr char const* tail = "})";

/// A record type's text around `fields`.
template <class Record>
std::string around(std::string_view fields) {
  std::string head;
  if constexpr (std::is_same_v<Record, ConfigSwitchPort>) head = configSwitchPortHead;
  if constexpr (std::is_same_v<Record, ConfigDevice>) head = configDeviceHead;
  if constexpr (std::is_same_v<Record, StatusSwitchPort>) head = statusSwitchPortHead;
  if constexpr (std::is_same_v<Record, StatusDevice>) head = statusDeviceHead;
  return head.append(fields).append(tail);
}

}  // namespace Hardware::Kest::Slice
