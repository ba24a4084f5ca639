#include "platform/mox/String8.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>
#include <ostream>
#include <stdexcept>

namespace Mox {

namespace {

/// The first characters, up to eight, as a number.
std::uint64_t littleEndian(std::string_view chars) noexcept {
  std::uint64_t word = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&word, chars.data(), std::min(chars.size(), sizeof word));
  } else {
    for (std::size_t i = 0; i < std::min(chars.size(), sizeof word); ++i) {
      word |= std::uint64_t{static_cast<unsigned char>(chars[i])} << 8 * i;
    }
  }
  return word;
}

/// Eight characters at a time, each eight spread over the whole word by a multiplication whose high
/// half is folded back. In the order of a little-endian machine, on every machine.
std::uint32_t hashOf(std::string_view chars) noexcept {
  constexpr std::size_t wordBytes = sizeof(std::uint64_t);
  std::uint64_t h = chars.size();
  auto const mix = [&](std::uint64_t word) {
    h = (h ^ word) * 0x9e3779b97f4a7c15U;
    h ^= h >> 32;
  };
  for (; chars.size() >= wordBytes; chars.remove_prefix(wordBytes)) mix(littleEndian(chars));
  if (!chars.empty()) mix(littleEndian(chars));
  h *= 0xd6e8feb86659fd93U;
  return static_cast<std::uint32_t>(h >> 32);
}

}  // namespace

char const String8::noChars = '\0';

String8::String8(std::string_view chars) {
  if (chars.empty()) return;
  if (chars.size() > std::numeric_limits<std::uint32_t>::max() - sizeof(Rep) - 1) {
    throw std::length_error("a string of 4 GiB");
  }
  void* const memory = ::operator new(sizeof(Rep) + chars.size() + 1);
  rep_ = new (memory) Rep(static_cast<std::uint32_t>(chars.size()));
  std::memcpy(rep_->chars(), chars.data(), chars.size());
  rep_->chars()[chars.size()] = '\0';
}

std::uint32_t String8::Rep::hashNow() noexcept {
  // What stands for "not hashed" here, and for "empty" in hash tables, gives way.
  std::uint32_t const now = std::clamp(hashOf({chars(), bytes}), 1U, 0xFFFFFFFEU);
  hash.store(now, std::memory_order_relaxed);
  return now;
}

void String8::freeRep(Rep* rep) noexcept {
  rep->~Rep();
  ::operator delete(rep);
}

std::ostream& operator<<(std::ostream& out, String8 const& s) {
  return out << s.view();
}

}  // namespace Mox
