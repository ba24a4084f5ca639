#pragma once

#include <array>
#include <cstdint>

/// Hexadecimal digits, by table: digits of a text follow no order that a branch could be predicted
/// from.
namespace Mox::detail {

inline constexpr char hexDigits[] = "0123456789abcdef";

inline constexpr auto hexValues = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(-1);
  for (std::int8_t value = 0; value < 16; ++value) {
    char const digit = hexDigits[value];
    values[static_cast<unsigned char>(digit)] = value;
    if (value > 9) values[static_cast<unsigned char>(digit - 'a' + 'A')] = value;
  }
  return values;
}();

/// The value of a digit of either case; negative for another character.
constexpr int hexValue(char digit) noexcept {
  return hexValues[static_cast<unsigned char>(digit)];
}

/// Writes two digits and returns the end behind them.
constexpr char* writeHex(char* out, std::uint8_t byte) noexcept {
  *out++ = hexDigits[byte >> 4];
  *out++ = hexDigits[byte & 15];
  return out;
}

}  // namespace Mox::detail
