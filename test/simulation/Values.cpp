#include "test/simulation/Values.h"

#include <algorithm>
#include <numeric>

namespace Simulation {

namespace {

constexpr PortRow portRows[] = {
    {0, 0, 0, "", 0, false, false, noMac},
    {1, 4096, 3, "fap1", 1, true, false, "00:1c:73:0a:0b:01"},
    {2, 5, 7, "fap1", 2, false, true, "00:1c:73:0a:0b:02"},
    {3, 4096, 0, "", 3, true, true, "ff:ff:ff:ff:ff:ff"},
    {4, 4095, 1, "fap2", 0, false, false, noMac},
    {5, 4097, 2, "fap2", 1, true, false, "00:1c:73:0a:0b:05"},
    {6, 1, 4, "a device with a long name", 0, false, true, "00:00:00:00:00:01"},
    {0x7fffffff, 4096, 6, "fap0", 2, false, false, "00:1c:73:0a:0b:07"},
};

constexpr DeviceRow deviceRows[] = {
    {-1, 0, 1, 0}, {0, 1, 2, 10},  {1, 2, 3, 20},          {0, 1, 0, 30},
    {1, 1, 3, 40}, {-1, 2, 1, 50}, {0, 0, 4, 0xfffffff8U}, {1, 3, 2, 60},
};

constexpr std::int32_t vlans[] = {0, 1, 10, 20, 4094, 4095, 4096, 2};

using Names = std::array<Mox::String8, keyCount>;

Names const portNames{"et1", "et2", "et3/1",  "et10", "Ethernet4/2/1, the long name",
                      "",    "po1", "vlan7et"};
Names const deviceNames{"fap0", "fap1", "fap2", "fap10", "a device with a long name",
                        "",     "et1",  "FAP0"};

Names const& namesOf(unsigned collection) {
  return isOfPorts(collection) ? portNames : deviceNames;
}

/// Orders keys by hash, then by bytes.
std::array<std::uint8_t, keyCount> walkThrough(Names const& names) {
  std::array<std::uint8_t, keyCount> walk{};
  std::iota(walk.begin(), walk.end(), std::uint8_t{0});
  std::sort(walk.begin(), walk.end(), [&](unsigned a, unsigned b) {
    return names[a].hash() != names[b].hash() ? names[a].hash() < names[b].hash()
                                              : names[a] < names[b];
  });
  return walk;
}

}  // namespace

Mox::String8 const& keyName(unsigned collection, unsigned key) {
  return namesOf(collection)[key];
}

unsigned keyOf(unsigned collection, Mox::String8 const& name) {
  Names const& names = namesOf(collection);
  return static_cast<unsigned>(std::find(names.begin(), names.end(), name) - names.begin());
}

std::array<std::uint8_t, keyCount> const& walkOf(unsigned collection) {
  static auto const portWalk = walkThrough(portNames);
  static auto const deviceWalk = walkThrough(deviceNames);
  return isOfPorts(collection) ? portWalk : deviceWalk;
}

std::int32_t numberOf(unsigned entity, unsigned collection, unsigned value) {
  switch (collection) {
    case nativeVlans:
      return vlans[value];
    case switchportModes:
    case deviceStates:
      return static_cast<std::int32_t>(value % 4);
    default:
      return static_cast<std::int32_t>(isConfig(entity) ? value : value % 2);
  }
}

PortRow const& portRow(std::int32_t number) {
  return portRows[number];
}

DeviceRow const& deviceRow(std::int32_t number) {
  return deviceRows[number];
}

}  // namespace Simulation
