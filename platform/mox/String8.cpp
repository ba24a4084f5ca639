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

/// The characters from `chars` on as a number, in the order of a little-endian machine.
template <class Word>
Word littleEndian(char const* chars) noexcept {
  Word word = 0;
  std::memcpy(&word, chars, sizeof word);
  if constexpr (std::endian::native != std::endian::little) {
    auto* const bytes = reinterpret_cast<unsigned char*>(&word);
    std::reverse(bytes, bytes + sizeof word);
  }
  return word;
}

/// One to seven characters as a number. Where two loads overlap they agree. Copying the characters
/// into a word instead would go through memory, for which a processor waits.
std::uint64_t partialWord(std::string_view chars) noexcept {
  std::size_t const count = chars.size();
  if (count >= sizeof(std::uint32_t)) {
    std::size_t const last = count - sizeof(std::uint32_t);
    return littleEndian<std::uint32_t>(chars.data()) |
           std::uint64_t{littleEndian<std::uint32_t>(chars.data() + last)} << 8 * last;
  }
  std::uint64_t word = 0;
  for (std::size_t const at : {std::size_t{0}, count / 2, count - 1}) {
    word |= std::uint64_t{static_cast<unsigned char>(chars[at])} << 8 * at;
  }
  return word;
}

/// Eight characters at a time, each eight spread over the whole word by a multiplication whose high
/// half is folded back. The same on every machine.
std::uint32_t hashOf(std::string_view chars) noexcept {
  constexpr std::size_t wordBytes = sizeof(std::uint64_t);
  std::uint64_t h = chars.size();
  auto const mix = [&](std::uint64_t word) {
    h = (h ^ word) * 0x9e3779b97f4a7c15U;
    h ^= h >> 32;
  };
  for (; chars.size() >= wordBytes; chars.remove_prefix(wordBytes)) {
    mix(littleEndian<std::uint64_t>(chars.data()));
  }
  if (!chars.empty()) mix(partialWord(chars));
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
