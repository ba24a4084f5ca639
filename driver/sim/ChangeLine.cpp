#include "driver/sim/ChangeLine.h"

#include <array>
#include <cstdio>

namespace Hardware::Kest::Sim {

namespace {

constexpr std::uint32_t ofNothing = 2166136261;

/// FNV-1a: bytes that have changed in one place never have the same check.
std::uint32_t checkOn(std::uint32_t check, std::string_view bytes) {
  constexpr std::uint32_t prime = 16777619;
  for (char const byte : bytes) check = (check ^ static_cast<unsigned char>(byte)) * prime;
  return check;
}

}  // namespace

std::uint32_t checkOf(std::string_view document) {
  return checkOn(ofNothing, document);
}

std::string changeLine(std::string_view change, std::uint32_t& check) {
  check = checkOn(check, change);
  std::array<char, changePrefixBytes + 1> prefix{};
  std::snprintf(prefix.data(), prefix.size(), "+%08x ", static_cast<unsigned>(check));
  return prefix.data() + std::string(change) + "\n";
}

}  // namespace Hardware::Kest::Sim
