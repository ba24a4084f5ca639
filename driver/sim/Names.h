#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

/// How long the names of interfaces and devices, and PCI paths, may be.
namespace Hardware::Kest::Sim {

constexpr std::size_t longestName = 255;  // bytes, of a PCI path too
constexpr std::ptrdiff_t deepestPath = 32;

inline bool isDeviceOrInterfaceName(std::string_view name) {
  return !name.empty() && name.size() <= longestName;
}

inline bool isPciPath(std::string_view path) {
  return path.size() <= longestName && std::count(path.begin(), path.end(), '/') <= deepestPath;
}

}  // namespace Hardware::Kest::Sim
