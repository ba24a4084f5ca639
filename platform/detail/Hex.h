#pragma once

/// Hexadecimal digits.
namespace Mox::detail {

/// The value of a digit of either case; -1 for another character.
inline int hexValue(char digit) noexcept {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

inline constexpr char hexDigits[] = "0123456789abcdef";

}  // namespace Mox::detail
