#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Hexadecimal digits.
namespace Mox::detail {

/// The value of a digit of either case; -1 for another character.
inline int hexValue(char digit) noexcept {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

/// Two digits, in lower case.
inline std::string hexText(std::uint8_t byte) {
  constexpr char digits[] = "0123456789abcdef";
  return {digits[byte >> 4], digits[byte & 15]};
}

}  // namespace Mox::detail
