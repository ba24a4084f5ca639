#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>

#include "platform/mox/MoxType.h"
#include "platform/mox/String8.h"

namespace Pelk {

/// MAC address of 6 octets; all zero by default.
class MOX_API EthAddr {
 public:
  using Octets = std::array<std::uint8_t, 6>;

  constexpr EthAddr() = default;
  constexpr explicit EthAddr(Octets octets) noexcept : octets_(octets) {}
  /// From the text form `00:1c:73:0a:0b:0c`, digits of either case; `RangeException`
  /// "expected ..., found ..." otherwise.
  explicit EthAddr(Mox::String8 const& text);

  constexpr Octets const& octets() const noexcept { return octets_; }
  /// The text form, in lower case.
  Mox::String8 stringValue() const;

  friend constexpr bool operator==(EthAddr const&, EthAddr const&) = default;

  static Mox::MoxType const* _fwkType();

 private:
  Octets octets_{};
};

/// The text form in apostrophes.
MOX_API Mox::String8 valueToStrep(EthAddr const& value);
MOX_API EthAddr sequenceToValue(Mox::String8::IteratorConst& it,
                                Mox::String8::IteratorConst const& end, EthAddr*);
MOX_API std::ostream& operator<<(std::ostream& out, EthAddr const& value);

}  // namespace Pelk
