#include "platform/mox/Strep.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "platform/detail/Hex.h"
#include "platform/mox/Dir.h"
#include "platform/mox/Entity.h"

namespace Mox {

namespace {

using Iterator = String8::IteratorConst;

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

/// The text that is left to read.
std::string_view rest(Iterator const& it, Iterator const& end) {
  return {&*it, end.pos() - it.pos()};
}

void advance(Iterator& it, std::size_t count) {
  for (; count > 0; --count) ++it;
}

void skipBlanks(Iterator& it, Iterator const& end) {
  while (!(it == end) && isBlank(*it)) ++it;
}

/// What stands at `it`, for a message: the character, or the text's end.
std::string foundAt(Iterator const& it, Iterator const& end) {
  if (it == end) return "found the end of the text";
  if (isControl(*it)) {
    return format("found character 0x%02x", static_cast<unsigned>(*it)).charPtr();
  }
  return std::string("found '") + *it + "'";
}

[[noreturn]] void throwExpected(std::string_view what, Iterator const& it, Iterator const& end) {
  std::string text = "expected ";
  text.append(what).append(", ").append(foundAt(it, end));
  throw RangeException(String8(text));
}

std::string_view trimmed(std::string_view token) {
  while (!token.empty() && isBlank(token.front())) token.remove_prefix(1);
  while (!token.empty() && isBlank(token.back())) token.remove_suffix(1);
  return token;
}

struct Escape {
  char character;
  char letter;
};
constexpr Escape escapes[] = {{'\\', '\\'}, {'\'', '\''}, {'\n', 'n'}, {'\t', 't'}, {'\r', 'r'}};

/// Whether it is printed as it is.
bool isPlain(char c) {
  return c != '\\' && c != '\'' && !isControl(c);
}

void appendEscaped(std::string& text, char c) {
  for (Escape const& escape : escapes) {
    if (c == escape.character) {
      text.append({'\\', escape.letter});
      return;
    }
  }
  auto const byte = static_cast<std::uint8_t>(c);
  text.append({'\\', 'x', detail::hexDigits[byte >> 4], detail::hexDigits[byte & 15]});
}

char readHexByte(Iterator& it, Iterator const& end) {
  int value = 0;
  for (int digits = 0; digits < 2; ++digits, ++it) {
    int const digit = it == end ? -1 : detail::hexValue(*it);
    if (digit < 0) throwExpected("two hexadecimal digits after \\x", it, end);
    value = value * 16 + digit;
  }
  return static_cast<char>(value);
}

/// Reads what follows a backslash.
char readEscaped(Iterator& it, Iterator const& end) {
  if (!(it == end) && *it == 'x') return readHexByte(++it, end);
  for (Escape const& escape : escapes) {
    if (!(it == end) && *it == escape.letter) {
      ++it;
      return escape.character;
    }
  }
  throwExpected("one of \\ ' n t r x after a backslash", it, end);
}

template <class Number>
[[noreturn]] void throwOutOfRange() {
  if constexpr (std::is_floating_point_v<Number>) {
    throwRangeException("expected a number that a double can hold, found another");
  } else {
    constexpr unsigned long long most = std::numeric_limits<Number>::max();
    throwRangeException(format("expected a number from 0 to %llu, found a larger one", most));
  }
}

template <class Number>
Number readNumber(Iterator& it, Iterator const& end, Number*) {
  skipBlanks(it, end);
  std::string_view chars = rest(it, end);
  if constexpr (std::is_floating_point_v<Number>) {  // "nan(1)" ends before the parenthesis
    chars = chars.substr(0, chars.find_first_not_of("0123456789+-.EINFATYeinfaty"));
  }
  Number value = 0;
  auto const [after, error] = std::from_chars(chars.data(), chars.data() + chars.size(), value);
  if (error == std::errc::result_out_of_range) throwOutOfRange<Number>();
  if (error != std::errc()) throwExpected("a decimal number", it, end);
  advance(it, static_cast<std::size_t>(after - chars.data()));
  return value;
}

/// Takes `word` if it stands at `it`.
bool tookWord(Iterator& it, Iterator const& end, std::string_view word) {
  bool const isThere = rest(it, end).starts_with(word);
  if (isThere) advance(it, word.size());
  return isThere;
}

}  // namespace

String8 valueToStrep(String8 const& value) {
  char const* at = value.charPtr();
  char const* const end = at + value.bytes();
  std::string text;
  text.reserve(value.bytes() + 2);
  text += '\'';
  while (true) {
    char const* const special = std::find_if_not(at, end, isPlain);
    text.append(at, special);
    if (special == end) return String8(text += '\'');
    appendEscaped(text, *special);
    at = special + 1;
  }
}

String8 valueToStrep(unsigned long long value) {
  std::array<char, std::numeric_limits<unsigned long long>::digits10 + 1> digits{};
  char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  return String8(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
}

String8 valueToStrep(double value) {
  std::array<char, 32> digits{};
  char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  std::string text(digits.data(), end);
  bool const looksWhole = text.find_first_not_of("-0123456789") == std::string::npos;
  return String8(looksWhole ? text + ".0" : text);
}

String8 valueToStrep(bool value) {
  static String8 const texts[] = {"False", "True"};
  return texts[value ? 1 : 0];
}

String8 valueToStrepOfRawPtr(Entity const* entity, MoxType const* type) {
  if (entity == nullptr) return "None";
  return format("EntityPtr(%s, %s)", valueToStrep(entity->fullName()).charPtr(),
                valueToStrep(type->fullName()).charPtr());
}

void needString(Iterator& it, Iterator const& end, char const* token) {
  Iterator at = it;
  for (char const* expected = token; *expected != '\0'; ++expected) {
    if (*expected == ' ') {
      skipBlanks(at, end);
    } else if (at == end || *at != *expected) {
      it = at;
      throwExpected(trimmed(token), it, end);
    } else {
      ++at;
    }
  }
  it = at;
}

String8 sequenceToValue(Iterator& it, Iterator const& end, String8*) {
  skipBlanks(it, end);
  if (it == end || *it != '\'') throwExpected("a string in apostrophes", it, end);
  ++it;
  std::string value;
  while (true) {
    std::string_view const left = rest(it, end);
    auto const special =
        std::find_if(left.begin(), left.end(), [](char c) { return c == '\'' || c == '\\'; });
    std::string_view const run(left.begin(), special);
    advance(it, run.size());
    if (it == end) throwExpected("the string's closing apostrophe", it, end);
    bool const isClosed = *it == '\'';
    ++it;
    if (isClosed && value.empty()) return String8(run);
    value.append(run);
    if (isClosed) return String8(value);
    value += readEscaped(it, end);
  }
}

unsigned int sequenceToValue(Iterator& it, Iterator const& end, unsigned int* type) {
  return readNumber(it, end, type);
}

unsigned short sequenceToValue(Iterator& it, Iterator const& end, unsigned short* type) {
  return readNumber(it, end, type);
}

unsigned long long sequenceToValue(Iterator& it, Iterator const& end, unsigned long long* type) {
  return readNumber(it, end, type);
}

double sequenceToValue(Iterator& it, Iterator const& end, double* type) {
  return readNumber(it, end, type);
}

bool sequenceToValue(Iterator& it, Iterator const& end, bool*) {
  skipBlanks(it, end);
  if (tookWord(it, end, "True")) return true;
  if (tookWord(it, end, "False")) return false;
  throwExpected("True or False", it, end);
}

Ptr<Entity> detail::readReference(Iterator& it, Iterator const& end, MoxType const* type) {
  skipBlanks(it, end);
  if (tookWord(it, end, "None")) return nullptr;
  if (!tookWord(it, end, "EntityPtr")) throwExpected("EntityPtr or None", it, end);
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
  Ptr<Entity> entity = entityAt(path);
  if (!entity) {
    it = pathAt;
    throwRangeException(format("there is no entity at '%s'", path.charPtr()));
  }
  if (entity->fwkType() != type) {
    it = pathAt;
    MoxType const* const found = entity->fwkType();
    throwRangeException(format("expected a '%s' at '%s', found a '%s'", type->fullName().charPtr(),
                               path.charPtr(),
                               found == nullptr ? "untyped entity" : found->fullName().charPtr()));
  }
  return entity;
}

void rethrowFromDeserializeAttr(RangeException const& exception, char const* attributeName) {
  std::string text(attributeName);
  throw RangeException(String8(text.append(": ").append(exception.text().view())));
}

void detail::throwJunk(Iterator const& at, String8 const& text) {
  // `%s` would end at a NUL.
  std::string junk = "junk at column " + std::to_string(at.pos()) + " deserializing ";
  throwRangeException(String8(junk.append(text.view())));
}

}  // namespace Mox
