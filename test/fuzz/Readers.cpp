#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <optional>

#include "platform/bridging/SwitchportMode.h"
#include "platform/fru/PciHam.h"
#include "platform/hardware/kest/FapType.h"
#include "platform/hardware/kest/SmMode.h"
#include "platform/mox/Dir.h"
#include "platform/mox/Strep.h"
#include "platform/pelk/EthAddr.h"
#include "test/fuzz/Fuzz.h"

/// The platform's readers, beside plain ones. The first byte selects the reader.
namespace {

using Mox::String8;
using Iterator = String8::IteratorConst;

constexpr std::string_view blanks = " \t\n\r";

std::string_view withoutBlanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(blanks), text.size()));
}

/// A walk over a string meets its bytes in order, and its end.
void walk(String8 const& text) {
  std::string met;
  for (Iterator it = text.begin(); !(it == text.end()); ++it) {
    Fuzz::require(it.pos() == met.size(), "a position counts the bytes before it");
    met += *it;
  }
  Fuzz::requireSame(met, text.view(), "a walk meets the string's bytes");
}

/// Reads one value of `T`; the reader's position afterwards goes to `after`.
template <class T>
std::optional<T> readOne(String8 const& text, std::size_t& after) {
  Iterator it = text.begin();
  std::optional<T> value;
  try {
    value = sequenceToValue(it, text.end(), static_cast<T*>(nullptr));
  } catch (Mox::RangeException const& refused) {
    Fuzz::require(!refused.text().empty(), "a refusal says why");
  }
  after = it.pos();
  Fuzz::require(after <= text.bytes(), "a reader stays in its text", text.view());
  return value;
}

template <class T>
void readPrintRead(String8 const& text) {
  std::size_t after = 0;
  auto const value = readOne<T>(text, after);
  if (!value) return;
  using Mox::valueToStrep;
  String8 const form = valueToStrep(*value);
  std::size_t behindForm = 0;
  Fuzz::require(readOne<T>(form, behindForm) == value, "a value is read as it was printed",
                form.view());
  Fuzz::require(behindForm == form.bytes(), "a printed form is read whole", form.view());
}

/// The number at the front of `digits`, if it fits; it has `length` digits.
template <class Unsigned>
std::optional<unsigned long long> plainNumber(std::string_view digits, std::size_t& length) {
  constexpr unsigned long long most = std::numeric_limits<Unsigned>::max();
  length = std::min(digits.find_first_not_of("0123456789"), digits.size());
  std::string_view number = digits.substr(0, length);
  while (number.size() > 1 && number.front() == '0') number.remove_prefix(1);
  std::string const largest = std::to_string(most);
  bool const fits =
      number.size() < largest.size() || (number.size() == largest.size() && number <= largest);
  if (number.empty() || !fits) return std::nullopt;
  return std::stoull(std::string(number));
}

template <class Unsigned>
void readNumber(String8 const& text) {
  std::string_view const digits = withoutBlanks(text.view());
  std::size_t const start = text.bytes() - digits.size();
  std::size_t length = 0;
  auto const expected = plainNumber<Unsigned>(digits, length);
  std::size_t after = 0;
  auto const number = readOne<Unsigned>(text, after);
  Fuzz::require(number.has_value() == expected.has_value(), "a number is taken if it fits",
                text.view());
  if (number) Fuzz::require(*number == *expected, "a number is read in full", text.view());
  Fuzz::require(after == (number ? start + length : start), "a number is read up to its end");
}

void readDouble(String8 const& text) {
  std::size_t after = 0;
  auto const value = readOne<double>(text, after);
  if (!value) return;
  String8 const form = Mox::valueToStrep(*value);
  std::size_t behindForm = 0;
  auto const again = readOne<double>(form, behindForm);
  bool const same = again && (*again == *value || (std::isnan(*again) && std::isnan(*value)));
  Fuzz::require(same && std::signbit(*again) == std::signbit(*value),
                "a number is read as it was printed", form.view());
  Fuzz::require(behindForm == form.bytes(), "a printed form is read whole", form.view());
}

/// The string in apostrophes at the front of `text`, escapes undone. `text` becomes the rest.
std::optional<std::string> plainString(std::string_view& text) {
  std::string const plain = "\\'ntr", meant = "\\'\n\t\r";
  if (!text.starts_with('\'')) return std::nullopt;
  std::string value;
  for (text.remove_prefix(1); !text.starts_with('\''); text.remove_prefix(1)) {
    if (text.empty()) return std::nullopt;
    if (text.front() != '\\') {
      value += text.front();
      continue;
    }
    text.remove_prefix(1);
    std::size_t const escape = text.empty() ? plain.npos : plain.find(text.front());
    if (escape != plain.npos) {
      value += meant[escape];
      continue;
    }
    std::string const hex(text.substr(0, 3));
    bool const isHex = hex.size() == 3 && hex[0] == 'x' &&
                       hex.find_first_not_of("0123456789abcdefABCDEF", 1) == hex.npos;
    if (!isHex) return std::nullopt;
    value += static_cast<char>(std::stoi(hex.substr(1), nullptr, 16));
    text.remove_prefix(2);
  }
  text.remove_prefix(1);
  return value;
}

void readString(String8 const& text) {
  std::string_view rest = withoutBlanks(text.view());
  auto const expected = plainString(rest);
  std::size_t after = 0;
  auto const value = readOne<String8>(text, after);
  Fuzz::require(value.has_value() == expected.has_value(), "a string is taken if it is one",
                text.view());
  if (!value) return;
  Fuzz::requireSame(value->view(), *expected, "a string is read with its escapes undone");
  Fuzz::require(after == text.bytes() - rest.size(), "a string is read up to its end");
  readPrintRead<String8>(text);
}

/// `00:1c:73:0a:0b:0c`, digits of either case.
bool isAddress(std::string_view text) {
  if (text.size() != 17) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    bool const isHex = std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
    if (i % 3 == 2 ? text[i] != ':' : !isHex) return false;
  }
  return true;
}

void readAddress(String8 const& text) {
  readPrintRead<Pelk::EthAddr>(text);
  bool taken = true;
  try {
    String8 const form = Pelk::EthAddr(text).stringValue();
    auto const same = [](char a, char b) { return a == std::tolower(b); };
    Fuzz::require(std::ranges::equal(form.view(), text.view(), same), "an address has one form",
                  text.view());
  } catch (Mox::RangeException const&) {
    taken = false;
  }
  Fuzz::require(taken == isAddress(text.view()), "an address is taken if it is one", text.view());
}

template <class T>
void readReference(String8 const& text) {
  std::size_t after = 0;
  auto const reference = readOne<Mox::Ptr<T>>(text, after);
  if (!reference) return;
  String8 const form = Mox::valueToStrepOfRawPtr(reference->ptr(), T::_fwkType());
  auto const again = readOne<Mox::Ptr<T>>(form, after);
  Fuzz::require(again && *again == *reference, "a reference is read as it was printed",
                form.view());
}

/// Whether `token` matches at the front of `text`, which becomes the rest.
bool matches(std::string_view token, std::string_view& text) {
  for (char const c : token) {
    if (c == ' ') {
      text = withoutBlanks(text);
    } else if (text.starts_with(c)) {
      text.remove_prefix(1);
    } else {
      return false;
    }
  }
  return true;
}

/// The token comes first, up to a NUL.
void need(String8 const& both) {
  Fuzz::Input input(reinterpret_cast<std::uint8_t const*>(both.charPtr()), both.bytes());
  std::string const token(input.takeTo('\0'));
  String8 const text(input.rest());
  std::string_view rest = text.view();
  bool const expected = matches(token, rest);
  Iterator it = text.begin();
  bool taken = true;
  try {
    Mox::needString(it, text.end(), token.c_str());
  } catch (Mox::RangeException const&) {
    taken = false;
  }
  Fuzz::require(taken == expected, "a token is taken if it matches", both.view());
  Fuzz::require(it.pos() == text.bytes() - rest.size(), "a token is taken up to where it matches");
}

void addEntities() {
  static Mox::Ptr<Mox::Entity> const handle = [] {
    Mox::Ptr<Mox::Entity> entity(new Fru::PciHam("0000:05:00.0"));
    Mox::dirAt("/pci")->entityIs(entity);
    return entity;
  }();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  constexpr void (*readers[])(String8 const&) = {
      walk,
      readString,
      readNumber<unsigned int>,
      readNumber<unsigned short>,
      readNumber<unsigned long long>,
      readPrintRead<bool>,
      readDouble,
      readAddress,
      readPrintRead<Bridging::SwitchportMode>,
      readPrintRead<Hardware::Kest::FapType>,
      readPrintRead<Hardware::Kest::SmMode>,
      readPrintRead<Mox::Name>,
      readReference<Fru::PciHam>,
      readReference<Mox::Dir>,
      need,
  };
  addEntities();
  Fuzz::Input input(bytes, size);
  auto const reader = readers[input.below(std::size(readers))];
  reader(String8(input.rest()));
  return 0;
}
