#pragma once

#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <string>
#include <string_view>

#include "platform/mox/PtrInterface.h"

namespace Mox {

/// Shared, immutable string of bytes.
///
/// A copy shares the characters; the empty string shares nothing and allocates nothing. The hash is
/// computed once, when it is first asked for, and carried with the characters. Characters may be
/// any bytes, NUL included; a NUL that is not counted follows them. There are fewer than 2^32 of
/// them; `std::length_error` otherwise.
class MOX_API String8 {
 public:
  static constexpr std::size_t npos = std::string_view::npos;

  /// Walks the characters of a string, which must outlive the iterator.
  class IteratorConst {
   public:
    char const& operator*() const noexcept { return *at_; }
    IteratorConst& operator++() noexcept {
      ++at_;
      return *this;
    }
    bool operator==(IteratorConst const& other) const noexcept { return at_ == other.at_; }

    /// 0-based offset from the start of the string.
    std::size_t pos() const noexcept { return static_cast<std::size_t>(at_ - start_); }

   private:
    friend class String8;
    IteratorConst(char const* start, char const* at) noexcept : start_(start), at_(at) {}

    char const* start_;
    char const* at_;
  };

  String8() noexcept = default;
  String8(char const* chars) : String8(std::string_view(chars)) {}
  explicit String8(std::string_view chars);
  explicit String8(std::string const& chars) : String8(std::string_view(chars)) {}
  MOX_INLINE String8(String8 const& other) noexcept : rep_(other.rep_) { take(); }
  String8(String8&& other) noexcept : rep_(other.rep_) { other.rep_ = nullptr; }
  String8& operator=(String8 other) noexcept {
    Rep* const mine = rep_;
    rep_ = other.rep_;
    other.rep_ = mine;
    return *this;
  }
  MOX_INLINE ~String8() {
    if (rep_ != nullptr && rep_->references.sub(1) == 0) freeRep(rep_);
  }

  /// NUL-terminated characters; valid as long as a string shares them.
  char const* charPtr() const noexcept { return rep_ == nullptr ? &noChars : rep_->chars(); }
  std::size_t bytes() const noexcept { return rep_ == nullptr ? 0 : rep_->bytes; }
  bool empty() const noexcept { return rep_ == nullptr; }
  /// Depends on the characters alone, on every machine. Neither 0 nor 2^32 - 1.
  std::uint32_t hash() const noexcept {
    if (rep_ == nullptr) return emptyHash;
    std::uint32_t const known = rep_->hash.load(std::memory_order_relaxed);
    return known != notHashed ? known : rep_->hashNow();
  }
  std::string_view view() const noexcept { return {charPtr(), bytes()}; }

  /// Offset of the first occurrence of `part`, or `npos`.
  std::size_t pos(std::string_view part) const noexcept { return view().find(part); }

  IteratorConst begin() const noexcept { return {charPtr(), charPtr()}; }
  IteratorConst end() const noexcept { return {charPtr(), charPtr() + bytes()}; }

  friend bool operator==(String8 const& a, String8 const& b) noexcept {
    if (a.rep_ == b.rep_) return true;
    return a.bytes() == b.bytes() && std::memcmp(a.charPtr(), b.charPtr(), a.bytes()) == 0;
  }
  friend bool operator==(String8 const& a, char const* b) noexcept { return a.view() == b; }
  friend bool operator==(String8 const& a, std::string_view b) noexcept { return a.view() == b; }
  friend std::strong_ordering operator<=>(String8 const& a, String8 const& b) noexcept {
    return a.rep_ == b.rep_ ? std::strong_ordering::equal : a.view() <=> b.view();
  }
  friend MOX_API std::ostream& operator<<(std::ostream& out, String8 const& s);

 private:
  static constexpr std::uint32_t notHashed = 0;
  static constexpr std::uint32_t emptyHash = 1;
  /// The empty string's characters: one object for all libraries, so that iterators compare equal.
  static char const noChars;

  struct Rep {  // the characters and their NUL follow in the same allocation
    explicit Rep(std::uint32_t size) noexcept : references(1), bytes(size) {}
    char* chars() noexcept { return reinterpret_cast<char*>(this + 1); }
    std::uint32_t MOX_API hashNow() noexcept;

    detail::ReferenceCount<std::uint32_t> references;
    std::atomic<std::uint32_t> hash{notHashed};
    std::uint32_t bytes;
  };

  static void freeRep(Rep* rep) noexcept;
  MOX_INLINE void take() const noexcept {
    if (rep_ != nullptr) rep_->references.add(1);
  }

  Rep* rep_ = nullptr;
};

using String = String8;

}  // namespace Mox
