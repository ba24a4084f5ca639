#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// The work that is measured, described once: a keyed collection of switch port records.
namespace Kest::Bench {

/// The record's nine fields as a user of the standard library would keep them. Every rival stores
/// this, or makes its own record from it.
struct Port {
  std::string ifName;  // the key
  std::uint32_t destId = 0;
  std::uint32_t shadowIntfId = 0;
  std::uint32_t trafficClass = 0;
  std::string devName;
  std::uint32_t fapNum = 0;
  bool ctrl = false;
  bool hwLag = false;
  std::array<std::uint8_t, 6> macAddr{};

  friend bool operator==(Port const&, Port const&) = default;
};

/// How large a collection is, how long its device names are (11 characters, which a `std::string`
/// holds without an allocation, or 32, which it does not), and how long its keys: by default as
/// long as in `et3/12/1`.
struct Shape {
  std::size_t keys;
  std::size_t nameLength = 11;
  std::size_t keyLength = 0;

  friend auto operator<=>(Shape const&, Shape const&) = default;

  std::string text() const {
    std::size_t const length = keyLength > 0 ? keyLength : nameLength;
    return std::to_string(length) + "@" + std::to_string(keys);
  }
};

inline constexpr Shape shortNames{1000, 11};
inline constexpr Shape longNames{1000, 32};
inline constexpr Shape manyShortNames{100000, 11};
inline constexpr Shape manyLongNames{100000, 32};

/// The records of a collection, each with a key and a device name of its own and with other values
/// than its neighbours. Always the same ones.
std::vector<Port> portsOf(Shape shape);

/// Bytes of the heap that are taken, with what the allocator adds.
std::size_t heapBytes();

/// The same port with one field changed; changed again it is as it was.
Port changed(Port port);

/// The numbers below `count` in a random order, always the same one: in which order a collection is
/// visited, so that nothing is predicted from the order in which it was filled.
std::vector<std::uint32_t> visitingOrder(std::size_t count);

/// `values` in the visiting order.
template <class T>
std::vector<T> visited(std::vector<T> const& values) {
  std::vector<T> all;
  all.reserve(values.size());
  for (std::uint32_t const i : visitingOrder(values.size())) all.push_back(values[i]);
  return all;
}

}  // namespace Kest::Bench
