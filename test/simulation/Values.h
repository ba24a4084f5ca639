#pragma once

#include <cstdint>
#include <string_view>

#include "platform/mox/String8.h"
#include "test/simulation/Event.h"

/// Keys and values of the collections, by number. The real world makes records of the numbers; the
/// plain one compares the numbers themselves.
namespace Simulation {

inline constexpr unsigned switchPorts = 0;
inline constexpr unsigned nativeVlans = 1;
inline constexpr unsigned switchportModes = 2;
inline constexpr unsigned devices = 3;
inline constexpr unsigned deviceStates = 4;
inline constexpr unsigned toldSliceId = 5;  // beside the collections
inline constexpr unsigned toldZeroReferences = 6;

inline constexpr char const* collectionNames[] = {"switchPort",     "nativeVlan",  "switchportMode",
                                                  "device",         "deviceState", "sliceId",
                                                  "zero references"};
inline constexpr char const* entityNames[] = {"config0", "config1", "status0", "status1"};

inline constexpr bool isConfig(unsigned entity) {
  return entity < configCount;
}
inline constexpr bool isOfPorts(unsigned collection) {
  return collection < devices;
}

/// The key's name in that collection. The last three are used seldom; the first two of them are
/// names that no port may have.
Mox::String8 const& keyName(unsigned collection, unsigned key);
/// The number of a name; `keyCount` for an unknown one.
unsigned keyOf(unsigned collection, Mox::String8 const& name);
/// The keys in the order in which the collection is walked.
std::array<std::uint8_t, keyCount> const& walkOf(unsigned collection);

/// The number for the event's value in that collection: of a configured record the row below, of a
/// record in a status 0 or 1, otherwise the value itself.
std::int32_t numberOf(unsigned entity, unsigned collection, unsigned value);

struct PortRow {
  std::uint32_t destId;  // tells the rows apart
  std::uint32_t shadowIntfId;
  std::uint32_t trafficClass;
  char const* devName;
  std::uint32_t fapNum;
  bool ctrl;
  bool hwLag;
  std::string_view macAddr;
};
PortRow const& portRow(std::int32_t number);

struct DeviceRow {
  int handle;  // 0 or 1, or -1 for none
  std::int32_t fapType;
  std::uint32_t numFaps;
  std::uint32_t firstPort;  // of seven that follow each other
};
DeviceRow const& deviceRow(std::int32_t number);

inline constexpr std::string_view noMac = "00:00:00:00:00:00";
inline constexpr char const* handleNames[] = {"0000:05:00.0", "0000:06:00.0"};
/// The levels that the event `trace` switches on: bit n for level n, and as a setting.
inline constexpr struct {
  unsigned bits;
  char const* setting;
} traceLevels[] = {{0, ""}, {1, "0"}, {2, "1"}, {4, "2"}, {0x100, "8"}, {0x3ff, "*"}};
inline constexpr char const* sliceIds[] = {"", "Linecard3/0", "Linecard4/0"};

}  // namespace Simulation
