#include "driver/sim/JsonString.h"

#include <nlohmann/json.hpp>

namespace Hardware::Kest::Sim {

using nlohmann::json;

namespace {

bool isUtf8(std::string_view bytes) {
  try {
    (void)json(bytes).dump();
    return true;
  } catch (json::type_error const&) {
    return false;
  }
}

/// -1: none.
int hexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

}  // namespace

std::string escaped(std::string_view bytes) {
  bool const utf8 = isUtf8(bytes);
  std::string text;
  for (char const byte : bytes) {
    auto const number = static_cast<unsigned char>(byte);
    if (byte == '%' || (!utf8 && number >= 0x80)) {
      constexpr char const* digits = "0123456789ABCDEF";
      text.append({'%', digits[number >> 4], digits[number & 15]});
    } else {
      text += byte;
    }
  }
  return text;
}

std::string unescaped(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    int const high = text[0] == '%' && text.size() > 2 ? hexDigit(text[1]) : -1;
    int const low = high >= 0 ? hexDigit(text[2]) : -1;
    bytes += low < 0 ? text[0] : static_cast<char>(high * 16 + low);
    text.remove_prefix(low < 0 ? 1 : 3);
  }
  return bytes;
}

}  // namespace Hardware::Kest::Sim
