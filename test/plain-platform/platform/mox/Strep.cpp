#include "platform/mox/Strep.h"

#include <charconv>
#include <limits>
#include <map>
#include <string>
#include <string_view>

#include "platform/mox/Dir.h"

namespace Mox {

namespace {

using Iterator = StrepIterator;

std::map<char, char> const escapes = {
    {'\\', '\\'}, {'\'', '\''}, {'\n', 'n'}, {'\t', 't'}, {'\r', 'r'}};
std::string const blanks = " \t\n\r";
std::string const hexDigits = "0123456789abcdef";

bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

void skip(Iterator& it, std::size_t characters) {
  for (; characters > 0; --characters) ++it;
}

void skipBlanks(Iterator& it, Iterator const& end) {
  while (!(it == end) && blanks.find(*it) != std::string::npos) ++it;
}

[[noreturn]] void refuse(std::string const& expected, Iterator const& it, Iterator const& end) {
  std::string found = "the end of the text";
  if (!(it == end)) {
    found = isControl(*it) ? format("character 0x%02x", static_cast<unsigned>(*it)).charPtr()
                           : std::string("'") + *it + "'";
  }
  throwRangeException(String8("expected " + expected + ", found " + found));
}

bool takes(Iterator& it, Iterator const& end, std::string_view word) {
  Iterator at = it;
  for (char const c : word) {
    if (at == end || *at != c) return false;
    ++at;
  }
  it = at;
  return true;
}

/// The characters up to the next one that ends a number.
std::string numberAt(Iterator it, Iterator const& end) {
  std::string number;
  for (; !(it == end) && std::string_view(" \t\n\r,:)]}").find(*it) == std::string::npos; ++it) {
    number += *it;
  }
  return number;
}

/// Reads a number as the standard library does; one that is too large is refused with `tooLarge`.
template <class Number>
Number readNumber(Iterator& it, Iterator const& end, String8 const& tooLarge) {
  skipBlanks(it, end);
  std::string const text = numberAt(it, end);
  Number number = 0;
  auto const [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::result_out_of_range) throwRangeException(tooLarge);
  if (error != std::errc()) refuse("a decimal number", it, end);
  skip(it, static_cast<std::size_t>(stop - text.data()));
  return number;
}

template <class Unsigned>
Unsigned readUnsigned(Iterator& it, Iterator const& end) {
  unsigned long long const most = std::numeric_limits<Unsigned>::max();
  return readNumber<Unsigned>(it, end,
                              format("expected a number from 0 to %llu, found a larger one", most));
}

char readHexByte(Iterator& it, Iterator const& end) {
  int byte = 0;
  for (int digit = 0; digit < 2; ++digit, ++it) {
    char const c = it == end ? ' ' : *it;
    std::size_t const value = hexDigits.find(c >= 'A' && c <= 'F' ? static_cast<char>(c + 32) : c);
    if (value == std::string::npos) refuse("two hexadecimal digits after \\x", it, end);
    byte = byte * 16 + static_cast<int>(value);
  }
  return static_cast<char>(byte);
}

char readEscaped(Iterator& it, Iterator const& end) {
  if (takes(it, end, "x")) return readHexByte(it, end);
  for (auto const& [character, letter] : escapes) {
    if (takes(it, end, {&letter, 1})) return character;
  }
  refuse("one of \\ ' n t r x after a backslash", it, end);
}

}  // namespace

String8 valueToStrep(String8 const& value) {
  std::string text = "'";
  for (char const c : value.view()) {
    if (auto const escape = escapes.find(c); escape != escapes.end()) {
      text.append("\\").append(1, escape->second);
    } else if (isControl(c)) {
      text.append(format("\\x%02x", static_cast<unsigned>(c)).view());
    } else {
      text += c;
    }
  }
  return String8(text + "'");
}

String8 valueToStrep(unsigned long long value) {
  return String8(std::to_string(value));
}

String8 valueToStrep(double value) {
  char digits[32] = {};
  std::to_chars(digits, digits + sizeof digits, value);
  std::string const text = digits;
  bool const looksWhole = text.find_first_not_of("-0123456789") == std::string::npos;
  return String8(looksWhole ? text + ".0" : text);
}

String8 valueToStrep(bool value) {
  return value ? "True" : "False";
}

String8 valueToStrepOfRawPtr(Entity const* entity, MoxType const* type) {
  if (entity == nullptr) return "None";
  return format("EntityPtr(%s, %s)", valueToStrep(entity->fullName()).charPtr(),
                valueToStrep(type->fullName()).charPtr());
}

void needString(Iterator& it, Iterator const& end, char const* token) {
  std::string const wanted(token);
  std::size_t const first = wanted.find_first_not_of(blanks);
  for (char const c : wanted) {
    if (c == ' ') {
      skipBlanks(it, end);
    } else if (it == end || *it != c) {
      refuse(wanted.substr(first, wanted.find_last_not_of(blanks) + 1 - first), it, end);
    } else {
      ++it;
    }
  }
}

String8 sequenceToValue(Iterator& it, Iterator const& end, String8*) {
  skipBlanks(it, end);
  if (!takes(it, end, "'")) refuse("a string in apostrophes", it, end);
  std::string value;
  while (!takes(it, end, "'")) {
    if (it == end) refuse("the string's closing apostrophe", it, end);
    char const c = *it;
    ++it;
    value += c == '\\' ? readEscaped(it, end) : c;
  }
  return String8(value);
}

unsigned int sequenceToValue(Iterator& it, Iterator const& end, unsigned int*) {
  return readUnsigned<unsigned int>(it, end);
}

unsigned short sequenceToValue(Iterator& it, Iterator const& end, unsigned short*) {
  return readUnsigned<unsigned short>(it, end);
}

unsigned long long sequenceToValue(Iterator& it, Iterator const& end, unsigned long long*) {
  return readUnsigned<unsigned long long>(it, end);
}

double sequenceToValue(Iterator& it, Iterator const& end, double*) {
  return readNumber<double>(it, end, "expected a number that a double can hold, found another");
}

bool sequenceToValue(Iterator& it, Iterator const& end, bool*) {
  skipBlanks(it, end);
  bool const isTrue = takes(it, end, "True");
  if (!isTrue && !takes(it, end, "False")) refuse("True or False", it, end);
  return isTrue;
}

Ptr<Entity> detail::readReference(Iterator& it, Iterator const& end, MoxType const* type) {
  skipBlanks(it, end);
  if (takes(it, end, "None")) return nullptr;
  if (!takes(it, end, "EntityPtr")) refuse("EntityPtr or None", it, end);
  needString(it, end, " ( ");
  Iterator const pathAt = it;
  String8 const path = sequenceToValue(it, end, static_cast<String8*>(nullptr));
  needString(it, end, " , ");
  Iterator const typeAt = it;
  String8 const typeName = sequenceToValue(it, end, static_cast<String8*>(nullptr));
  needString(it, end, " )");
  if (!(typeName == type->fullName())) {
    it = typeAt;
    throwRangeException(format("expected a reference to a '%s', found one to a '%s'",
                               type->fullName().charPtr(), typeName.charPtr()));
  }
  Ptr<Entity> const entity = entityAt(path);
  if (entity && entity->fwkType() == type) return entity;
  it = pathAt;
  if (!entity) throwRangeException(format("there is no entity at '%s'", path.charPtr()));
  MoxType const* const found = entity->fwkType();
  throwRangeException(format("expected a '%s' at '%s', found a '%s'", type->fullName().charPtr(),
                             path.charPtr(),
                             found == nullptr ? "untyped entity" : found->fullName().charPtr()));
}

void rethrowFromDeserializeAttr(RangeException const& exception, char const* attributeName) {
  throwRangeException(String8(attributeName + (": " + std::string(exception.text().view()))));
}

void detail::throwJunk(Iterator const& at, String8 const& text) {
  throwRangeException(String8("junk at column " + std::to_string(at.pos()) + " deserializing " +
                              std::string(text.view())));
}

}  // namespace Mox
