#include "text/Escapes.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace Text {

namespace {

/// -1: none.
int hexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

}  // namespace

bool isUtf8(std::string_view bytes) {
  try {
    static_cast<void>(nlohmann::json(bytes).dump());
    return true;
  } catch (nlohmann::json::type_error const&) {
    return false;
  }
}

std::string visible(std::string_view text) {
  std::string safe;
  for (std::size_t at = 0; at < text.size(); ++at) {
    auto const byte = static_cast<unsigned char>(text[at]);
    // Above ASCII, the control characters are U+0080 to U+009F.
    bool const isHighControl =
        byte == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
    if (byte < 0x20 || byte == 0x7F || isHighControl) {
      char escape[5];
      std::snprintf(escape, sizeof escape, "\\x%02x",
                    isHighControl ? static_cast<unsigned char>(text[++at]) : byte);
      safe += escape;
    } else {
      safe += text[at];
    }
  }
  return safe;
}

std::string visibleLines(std::string_view text) {
  std::string safe;
  while (true) {
    std::size_t const end = text.find('\n');
    safe += visible(text.substr(0, end));
    if (end == text.npos) return safe;
    safe += '\n';
    text.remove_prefix(end + 1);
  }
}

std::string shortened(std::string_view text) {
  constexpr std::size_t most = 200;
  constexpr std::size_t kept = 90;  // at either end
  if (text.size() <= most) return std::string(text);
  return std::string(text.substr(0, kept)) + " ... " + std::string(text.substr(text.size() - kept));
}

std::string percentEncoded(std::string_view bytes) {
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

std::string percentDecoded(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    int const high = text[0] == '%' && text.size() > 2 ? hexDigit(text[1]) : -1;
    int const low = high >= 0 ? hexDigit(text[2]) : -1;
    bytes += low < 0 ? text[0] : static_cast<char>(high * 16 + low);
    text.remove_prefix(low < 0 ? 1 : 3);
  }
  return bytes;
}

}  // namespace Text
