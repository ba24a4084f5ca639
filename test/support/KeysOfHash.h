#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

namespace Support {

/// Keys of chosen hashes: the hash of strings is known and can be inverted. A key has 16 printable
/// characters without apostrophes, quotation marks and backslashes; the first eight are the same in
/// all.
class KeysOfHash {
 public:
  /// @param start of all keys, eight characters
  explicit KeysOfHash(char const (&start)[9] = "etet-key") {
    std::memcpy(&start_, start, sizeof start_);
  }

  /// The next key whose hash is `hash`, or would be if that could be one: `String8` has neither 0
  /// nor 2^32 - 1.
  std::string next(std::uint32_t hash) {
    std::uint64_t last = 0;
    do {
      last = lastWord((std::uint64_t{hash} << 32U) | low_++);
    } while (!isPlain(last));
    std::string key(2 * sizeof last, ' ');
    std::memcpy(key.data(), &start_, sizeof start_);
    std::memcpy(key.data() + sizeof start_, &last, sizeof last);
    return key;
  }

  /// `count` keys whose hashes are `hash`, `hash` and `step`, and so on. With a step of 1 they have
  /// one home in any table that is not huge, with 0 even one hash.
  std::vector<std::string> next(std::size_t count, std::uint32_t step,
                                std::uint32_t hash = 0x20000000U) {
    std::vector<std::string> keys;
    for (; keys.size() < count; hash += step) keys.push_back(next(hash));
    return keys;
  }

 private:
  static constexpr std::size_t bytes = 16;

  /// The inverse of an odd number, modulo 2^64.
  static constexpr std::uint64_t inverse(std::uint64_t number) {
    std::uint64_t found = number;  // right in three bits; each step doubles them
    for (int step = 0; step < 5; ++step) found *= 2 - number * found;
    return found;
  }
  // As in String8.cpp.
  static constexpr std::uint64_t spread = 0x9e3779b97f4a7c15U;
  static constexpr std::uint64_t final = 0xd6e8feb86659fd93U;

  /// The eight characters after which the hash stands at `wanted`, of which it is the high half.
  std::uint64_t lastWord(std::uint64_t wanted) const {
    constexpr std::uint64_t unspread = inverse(spread), unfinal = inverse(final);
    std::uint64_t h = (bytes ^ start_) * spread;
    h ^= h >> 32U;
    wanted *= unfinal;
    wanted ^= wanted >> 32U;
    return (wanted * unspread) ^ h;
  }

  static bool isPlain(std::uint64_t word) {
    if ((word & 0x8080808080808080U) != 0) return false;  // most words
    char chars[sizeof word];
    std::memcpy(chars, &word, sizeof word);
    return std::all_of(std::begin(chars), std::end(chars), [](char c) {
      return c > ' ' && c < '\x7F' && c != '\'' && c != '"' && c != '\\';
    });
  }

  std::uint64_t start_ = 0;
  std::uint32_t low_ = 0;
};

}  // namespace Support
