#include "platform/pelk/EthAddr.h"

#include <charconv>
#include <ostream>
#include <string_view>

#include "platform/mox/GenericValue.h"
#include "platform/mox/Strep.h"

namespace Pelk {

namespace {

constexpr std::size_t octetWidth = 3;  // two digits and the colon before the next octet

/// Two hexadecimal digits, no sign.
bool readOctet(std::string_view digits, std::uint8_t& octet) {
  char const* const end = digits.data() + digits.size();
  auto const result = std::from_chars(digits.data(), end, octet, 16);
  return result.ec == std::errc() && result.ptr == end;
}

}  // namespace

EthAddr::EthAddr(Mox::String8 const& text) {
  std::string_view const chars = text.view();
  bool good = chars.size() == octets_.size() * octetWidth - 1;
  for (std::size_t i = 0; good && i < octets_.size(); ++i) {
    good = readOctet(chars.substr(i * octetWidth, 2), octets_[i]) &&
           (i == 0 || chars[i * octetWidth - 1] == ':');
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

EthAddr::Text EthAddr::text() const noexcept {
  static constexpr char digits[] = "0123456789abcdef";
  Text text;
  char* at = text.data();
  for (std::uint8_t const octet : octets_) {
    *at++ = digits[octet / 16];
    *at++ = digits[octet % 16];
    *at++ = ':';
  }
  text.back() = '\0';
  return text;
}

Mox::String8 EthAddr::stringValue() const {
  return text().data();
}

Mox::String8 valueToStrep(EthAddr const& value) {
  return Mox::valueToStrep(value.stringValue());
}

EthAddr sequenceToValue(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end,
                        EthAddr*) {
  Mox::String8::IteratorConst const start = it;
  Mox::String8 const text = Mox::sequenceToValue(it, end, static_cast<Mox::String8*>(nullptr));
  try {
    return EthAddr(text);
  } catch (Mox::RangeException const&) {
    it = start;
    throw;
  }
}

std::ostream& operator<<(std::ostream& out, EthAddr const& value) {
  return out << value.stringValue();
}

}  // namespace Pelk
