#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <iosfwd>

#include "platform/mox/MoxType.h"
#include "platform/mox/String8.h"

namespace Mox {
class StrepBuffer;
}

namespace Pelk {

/// MAC address of 6 octets; all zero by default.
class MOX_API EthAddr {
 public:
  using Octets = std::array<std::uint8_t, 6>;
  using Text = std::array<char, 18>;

  constexpr EthAddr() = default;
  constexpr explicit EthAddr(Octets octets) noexcept : octets_(octets) {}
  /// From the text form `00:1c:73:0a:0b:0c`, digits of either case; `RangeException`
  /// "expected ..., found ..." otherwise.
  explicit EthAddr(Mox::String8 const& text);

  constexpr Octets const& octets() const noexcept { return octets_; }
  /// The text form, in lower case.
  Mox::String8 stringValue() const;
  /// The same, NUL-terminated, for whoever needs its characters for a moment: takes no memory.
  Text text() const noexcept;

  /// By pairs of octets: records are compared with every write, and six bytes would take a call.
  friend constexpr bool operator==(EthAddr const& a, EthAddr const& b) noexcept {
    auto const x = std::bit_cast<Pairs>(a.octets_);
    auto const y = std::bit_cast<Pairs>(b.octets_);
    return ((x[0] ^ y[0]) | (x[1] ^ y[1]) | (x[2] ^ y[2])) == 0;
  }

  static Mox::MoxType const* _fwkType();

 private:
  using Pairs = std::array<std::uint16_t, 3>;

  Octets octets_{};
};

/// The text form in apostrophes.
MOX_API Mox::String8 valueToStrep(EthAddr const& value);
MOX_API void appendStrep(Mox::StrepBuffer& text, EthAddr const& value);
MOX_API EthAddr sequenceToValue(Mox::String8::IteratorConst& it,
                                Mox::String8::IteratorConst const& end, EthAddr*);
MOX_API std::ostream& operator<<(std::ostream& out, EthAddr const& value);

}  // namespace Pelk
