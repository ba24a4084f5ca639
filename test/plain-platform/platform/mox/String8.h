#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "platform/mox/PtrInterface.h"

namespace Mox {

/// A shared `std::string`; the empty one is shared by all.
class String8 {
 public:
  static constexpr std::size_t npos = std::string::npos;

  class IteratorConst {
   public:
    char operator*() const { return *at_; }
    IteratorConst& operator++() {
      ++at_;
      return *this;
    }
    bool operator==(IteratorConst const& other) const { return at_ == other.at_; }
    std::size_t pos() const { return static_cast<std::size_t>(at_ - start_); }

   private:
    friend class String8;
    IteratorConst(char const* start, char const* at) : start_(start), at_(at) {}

    char const* start_;
    char const* at_;
  };

  String8() : String8(std::string_view()) {}
  String8(char const* chars) : String8(std::string_view(chars)) {}
  explicit String8(std::string_view chars)
      : chars_(chars.empty() ? none() : std::make_shared<std::string const>(chars)) {}
  explicit String8(std::string const& chars) : String8(std::string_view(chars)) {}

  char const* charPtr() const { return chars_->c_str(); }
  std::size_t bytes() const { return chars_->size(); }
  bool empty() const { return chars_->empty(); }
  std::string_view view() const { return *chars_; }
  std::size_t pos(std::string_view part) const { return chars_->find(part); }
  /// The same as on every platform, so that collections have the same order.
  std::uint32_t hash() const;

  IteratorConst begin() const { return {charPtr(), charPtr()}; }
  IteratorConst end() const { return {charPtr(), charPtr() + bytes()}; }

  friend bool operator==(String8 const& a, String8 const& b) { return a.view() == b.view(); }
  friend bool operator==(String8 const& a, char const* b) { return a.view() == b; }
  friend bool operator==(String8 const& a, std::string_view b) { return a.view() == b; }
  friend std::strong_ordering operator<=>(String8 const& a, String8 const& b) {
    return a.view() <=> b.view();
  }
  friend std::ostream& operator<<(std::ostream& out, String8 const& s) { return out << s.view(); }

 private:
  using Chars = std::shared_ptr<std::string const>;
  static Chars const& none();

  Chars chars_;
};

using String = String8;

}  // namespace Mox
