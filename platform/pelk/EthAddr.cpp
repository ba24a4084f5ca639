#include "platform/pelk/EthAddr.h"

#include <array>
#include <ostream>
#include <string_view>
#include <tuple>

#include "platform/detail/Hex.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/Strep.h"
#include "platform/mox/StrepBuffer.h"

namespace Pelk {

namespace {

constexpr std::size_t octetWidth = 3;  // two digits and the colon before the next octet
constexpr std::size_t textBytes = std::tuple_size_v<EthAddr::Octets> * octetWidth - 1;

/// Two hexadecimal digits an octet, no sign.
bool readOctets(std::string_view text, EthAddr::Octets& octets) {
  if (text.size() != textBytes) return false;
  bool good = true;
  for (std::size_t i = 0; i < octets.size(); ++i) {
    std::string_view const digits = text.substr(i * octetWidth);
    int const octet = Mox::detail::hexValue(digits[0]) * 16 | Mox::detail::hexValue(digits[1]);
    good &= octet >= 0 && (i + 1 == octets.size() || digits[2] == ':');
    octets[i] = static_cast<std::uint8_t>(octet);
  }
  return good;
}

/// Writes the text and returns the end behind it.
char* writeOctets(char* out, EthAddr::Octets const& octets) {
  for (std::size_t i = 0; i < octets.size(); ++i) {
    if (i > 0) *out++ = ':';
    out = Mox::detail::writeHex(out, octets[i]);
  }
  return out;
}

/// Takes the text as it is printed, without a string being made of it: 0.8 of the instructions of
/// reading a switch port.
bool tookPrinted(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end,
                 EthAddr::Octets& octets) {
  std::string_view const rest = it.viewTo(end);
  bool const taken = rest.size() >= textBytes + 2 && rest[0] == '\'' &&
                     rest[textBytes + 1] == '\'' && readOctets(rest.substr(1, textBytes), octets);
  if (taken) it += textBytes + 2;
  return taken;
}

}  // namespace

EthAddr::EthAddr(Mox::String8 const& text) {
  if (readOctets(text.view(), octets_)) return;
  Mox::throwRangeException(
      Mox::format("expected a MAC address such as '00:1c:73:0a:0b:0c', found %s",
                  Mox::valueToStrep(text).charPtr()));
}

Mox::MoxType const* EthAddr::_fwkType() {
  static Mox::ValueType<EthAddr> const type("Pelk::EthAddr");
  return &type;
}

EthAddr::Text EthAddr::text() const noexcept {
  Text text;
  *writeOctets(text.data(), octets_) = '\0';
  return text;
}

Mox::String8 EthAddr::stringValue() const {
  return text().data();
}

void appendStrep(Mox::StrepBuffer& text, EthAddr const& value) {
  char* out = text.room(textBytes + 2);
  *out++ = '\'';
  out = writeOctets(out, value.octets());
  *out++ = '\'';
  text.endIs(out);
}

Mox::String8 valueToStrep(EthAddr const& value) {
  Mox::StrepBuffer text;
  appendStrep(text, value);
  return text.string();
}

EthAddr sequenceToValue(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end,
                        EthAddr*) {
  EthAddr::Octets octets{};
  if (tookPrinted(it, end, octets)) return EthAddr(octets);
  return Mox::readConverted(it, end, [](Mox::String8 const& text) { return EthAddr(text); });
}

std::ostream& operator<<(std::ostream& out, EthAddr const& value) {
  return out << value.stringValue();
}

}  // namespace Pelk
