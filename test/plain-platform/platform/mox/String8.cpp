#include "platform/mox/String8.h"

#include <algorithm>

namespace Mox {

String8::Chars const& String8::none() {
  static Chars const empty = std::make_shared<std::string const>();
  return empty;
}

std::uint32_t String8::hash() const {
  if (empty()) return 1;
  std::uint64_t h = bytes();
  for (std::size_t start = 0; start < bytes(); start += 8) {
    std::uint64_t word = 0;  // eight characters, the first one lowest
    for (std::size_t i = std::min(start + 8, bytes()); i-- > start;) {
      word = word << 8U | static_cast<unsigned char>((*chars_)[i]);
    }
    h = (h ^ word) * 0x9e3779b97f4a7c15U;
    h ^= h >> 32U;
  }
  h *= 0xd6e8feb86659fd93U;
  return std::clamp(static_cast<std::uint32_t>(h >> 32U), 1U, 0xFFFFFFFEU);
}

}  // namespace Mox
