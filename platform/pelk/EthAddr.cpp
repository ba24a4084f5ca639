#include "platform/pelk/EthAddr.h"

#include <ostream>
#include <string_view>
#include <tuple>

#include "platform/detail/Hex.h"
#include "platform/detail/ReadConverted.h"
#include "platform/mox/GenericValue.h"

namespace Pelk {

namespace {

constexpr std::size_t octetWidth = 3;  // two digits, then a colon or the end

using Quoted = std::array<char, 1 + std::tuple_size_v<EthAddr::Octets> * octetWidth>;

/// The text form in apostrophes.
Quoted quoted(EthAddr const& value) {
  Quoted text;
  char* at = text.data();
  *at++ = '\'';
  for (std::uint8_t const octet : value.octets()) {
    *at++ = Mox::detail::hexDigits[octet >> 4];
    *at++ = Mox::detail::hexDigits[octet & 15];
    *at++ = ':';
  }
  text.back() = '\'';
  return text;
}

}  // namespace

EthAddr::EthAddr(Mox::String8 const& text) {
  bool good = text.bytes() + 1 == octets_.size() * octetWidth;
  for (std::size_t i = 0; good && i < octets_.size(); ++i) {
    char const* const digits = text.charPtr() + i * octetWidth;
    int const octet = Mox::detail::hexValue(digits[0]) * 16 | Mox::detail::hexValue(digits[1]);
    good = octet >= 0 && digits[2] == (i + 1 == octets_.size() ? '\0' : ':');
    octets_[i] = static_cast<std::uint8_t>(octet);
  }
  if (good) return;
  Mox::throwRangeException(
      Mox::format("expected a MAC address such as '00:1c:73:0a:0b:0c', found %s",
                  Mox::valueToStrep(text).charPtr()));
}

Mox::MoxType const* EthAddr::_fwkType() {
  static Mox::ValueType<EthAddr> const type("Pelk::EthAddr");
  return &type;
}

Mox::String8 EthAddr::stringValue() const {
  Quoted const text = quoted(*this);
  return Mox::String8(std::string_view(text.data() + 1, text.size() - 2));
}

Mox::String8 valueToStrep(EthAddr const& value) {
  Quoted const text = quoted(value);
  return Mox::String8(std::string_view(text.data(), text.size()));
}

EthAddr sequenceToValue(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end,
                        EthAddr*) {
  return Mox::detail::readConverted(it, end,
                                    [](Mox::String8 const& text) { return EthAddr(text); });
}

std::ostream& operator<<(std::ostream& out, EthAddr const& value) {
  return out << value.stringValue();
}

}  // namespace Pelk
