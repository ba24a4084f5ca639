#include "platform/pelk/EthAddr.h"

#include <ostream>
#include <string>

#include "platform/detail/Hex.h"
#include "platform/detail/ReadConverted.h"
#include "platform/mox/GenericValue.h"

namespace Pelk {

namespace {

constexpr std::size_t octetWidth = 3;  // two digits, then a colon or the end

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
  std::string text;
  for (std::uint8_t const octet : octets_) {
    if (!text.empty()) text += ':';
    text += Mox::detail::hexText(octet);
  }
  return Mox::String8(text);
}

Mox::String8 valueToStrep(EthAddr const& value) {
  return Mox::valueToStrep(value.stringValue());
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
