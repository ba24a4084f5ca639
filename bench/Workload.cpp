#include "bench/Workload.h"

#include <malloc.h>

#include <iomanip>
#include <numeric>
#include <random>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace Kest::Bench {

namespace {

using Random = std::mt19937_64;

constexpr std::uint64_t valuesSeed = 1;
constexpr std::uint64_t orderSeed = 2;
constexpr std::uint32_t changedBit = 1U << 16;  // no destination of `portsOf` has it

constexpr std::size_t lanes = 4;
constexpr std::size_t portsOfASlot = 36;

/// A key of so many characters, as in `e0000f`; as in `et3/12/1` for 0.
std::string keyOf(std::size_t number, std::size_t length) {
  if (length > 0) {
    std::ostringstream key;
    key << 'e' << std::hex << std::setfill('0') << std::setw(static_cast<int>(length - 1))
        << number;
    return key.str();
  }
  std::size_t const port = number / lanes;
  return "et" + std::to_string(1 + port / portsOfASlot) + "/" +
         std::to_string(1 + port % portsOfASlot) + "/" + std::to_string(1 + number % lanes);
}

std::string devNameOf(std::size_t number, std::size_t length) {
  std::string const head = length == 11 ? "fap-" : "linecard3/forwarding-chip";
  if (length <= head.size()) throw std::invalid_argument("no device name is that short");
  std::ostringstream name;
  name << head << std::setfill('0') << std::setw(static_cast<int>(length - head.size())) << number;
  return name.str();
}

}  // namespace

std::vector<Port> portsOf(Shape shape) {
  Random random(valuesSeed);
  auto const below = [&](std::uint32_t bound) {
    return static_cast<std::uint32_t>(random() % bound);
  };
  std::vector<Port> ports(shape.keys);
  for (std::size_t i = 0; i < ports.size(); ++i) {
    Port& port = ports[i];
    port.ifName = keyOf(i, shape.keyLength);
    port.destId = below(1U << (8 + below(9)));
    port.shadowIntfId = below(12) == 0 ? below(4096) : 4096;
    port.trafficClass = below(8);
    port.devName = devNameOf(i, shape.nameLength);
    port.fapNum = below(3);
    port.ctrl = below(2) == 1;
    port.hwLag = below(2) == 1;
    for (auto& octet : port.macAddr) octet = static_cast<std::uint8_t>(below(256));
  }
  return ports;
}

std::size_t heapBytes() {
  auto const info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

Port changed(Port port) {
  port.destId ^= changedBit;
  return port;
}

std::vector<std::uint32_t> visitingOrder(std::size_t count) {
  Random random(orderSeed);
  std::vector<std::uint32_t> order(count);
  std::iota(order.begin(), order.end(), 0U);
  for (std::size_t left = count; left > 1; --left) {
    std::swap(order[left - 1], order[random() % left]);
  }
  return order;
}

}  // namespace Kest::Bench
