#include "platform/mox/Strep.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/detail/Hex.h"
#include "platform/mox/Dir.h"
#include "platform/mox/Entity.h"
#include "platform/mox/StrepBuffer.h"

namespace Mox {

namespace {

using Iterator = String8::IteratorConst;

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

constexpr bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
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

/// What stands behind the backslash for each character: 'x' for two digits, NUL for no escape.
constexpr auto escapeLetters = [] {
  std::array<char, 256> letters{};
  for (std::size_t c = 0; c < letters.size(); ++c) {
    if (isControl(static_cast<char>(c))) letters[c] = 'x';
  }
  for (Escape const& escape : escapes) {
    letters[static_cast<unsigned char>(escape.character)] = escape.letter;
  }
  return letters;
}();

char escapeLetter(char c) {
  return escapeLetters[static_cast<unsigned char>(c)];
}

void appendEscaped(StrepBuffer& text, char c) {
  constexpr std::size_t longest = 4;  // \xHH
  char* out = text.room(longest);
  *out++ = '\\';
  *out++ = escapeLetter(c);
  if (escapeLetter(c) == 'x') out = detail::writeHex(out, static_cast<std::uint8_t>(c));
  text.endIs(out);
}

/// Whether a string cannot go on with `c` as it stands.
bool endsRun(char c) {
  return c == '\'' || c == '\\';
}

char readHexByte(Iterator& it, Iterator const& end) {
  int value = 0;
  for (int digits = 0; digits < 2; ++digits) {
    int const digit = it == end ? -1 : detail::hexValue(*it);
    if (digit < 0) throwExpected("two hexadecimal digits behind \\x", it, end);
    value = value * 16 + digit;
    ++it;
  }
  return static_cast<char>(value);
}

/// Reads what follows a backslash.
char readEscaped(Iterator& it, Iterator const& end) {
  if (!(it == end) && *it == 'x') {
    ++it;
    return readHexByte(it, end);
  }
  for (Escape const& escape : escapes) {
    if (!(it == end) && *it == escape.letter) {
      ++it;
      return escape.character;
    }
  }
  throwExpected("one of \\ ' n t r x behind a backslash", it, end);
}

template <class Unsigned>
Unsigned readUnsigned(Iterator& it, Iterator const& end) {
  skipBlanks(it, end);
  std::string_view const rest = it.viewTo(end);
  Unsigned value = 0;
  auto const [behind, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
  if (error == std::errc::result_out_of_range) {
    constexpr unsigned long long most = std::numeric_limits<Unsigned>::max();
    throwRangeException(format("expected a number from 0 to %llu, found a larger one", most));
  }
  if (error != std::errc()) throwExpected("a decimal number", it, end);
  it += static_cast<std::size_t>(behind - rest.data());
  return value;
}

/// Takes `word` if it stands at `it`.
bool tookWord(Iterator& it, Iterator const& end, std::string_view word) {
  if (!it.viewTo(end).starts_with(word)) return false;
  it += word.size();
  return true;
}

template <class T>
String8 strepOf(T const& value) {
  StrepBuffer text;
  appendStrep(text, value);
  return text.string();
}

}  // namespace

void appendStrep(StrepBuffer& text, String8 const& value) {
  std::string_view rest = value.view();
  text.append("'");
  while (true) {
    auto const special = std::find_if(rest.begin(), rest.end(), escapeLetter);
    text.append({rest.begin(), special});
    if (special == rest.end()) break;
    appendEscaped(text, *special);
    rest = {special + 1, rest.end()};
  }
  text.append("'");
}

void appendStrep(StrepBuffer& text, unsigned long long value) {
  constexpr std::size_t mostDigits = std::numeric_limits<unsigned long long>::digits10 + 1;
  char* const out = text.room(mostDigits);
  text.endIs(std::to_chars(out, out + mostDigits, value).ptr);
}

void appendStrep(StrepBuffer& text, bool value) {
  text.append(value ? "True" : "False");
}

String8 valueToStrep(String8 const& value) {
  return strepOf(value);
}

String8 valueToStrep(unsigned long long value) {
  return strepOf(value);
}

String8 valueToStrep(double value) {
  std::array<char, 32> digits{};
  char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  std::string text(digits.data(), end);
  bool const looksWhole = text.find_first_not_of("-0123456789") == std::string::npos;
  return String8(looksWhole ? text + ".0" : text);
}

String8 valueToStrep(bool value) {
  return strepOf(value);
}

String8 valueToStrepOfRawPtr(Entity const* entity, MoxType const* type) {
  if (entity == nullptr) return "None";
  return format("EntityPtr(%s, %s)", valueToStrep(entity->fullName()).charPtr(),
                valueToStrep(type->fullName()).charPtr());
}

void needString(Iterator& it, Iterator const& end, char const* token) {
  for (char const* at = token; *at != '\0'; ++at) {
    if (*at == ' ') {
      skipBlanks(it, end);
    } else if (it == end || *it != *at) {
      throwExpected(trimmed(token), it, end);
    } else {
      ++it;
    }
  }
}

String8 sequenceToValue(Iterator& it, Iterator const& end, String8*) {
  skipBlanks(it, end);
  if (it == end || *it != '\'') throwExpected("a string in apostrophes", it, end);
  ++it;
  std::string value;
  while (true) {
    std::string_view const rest = it.viewTo(end);
    auto const special = std::find_if(rest.begin(), rest.end(), endsRun);
    std::string_view const run(rest.begin(), special);
    it += run.size();
    if (it == end) throwExpected("the string's closing apostrophe", it, end);
    char const c = *it;
    ++it;
    if (c == '\'' && value.empty()) return String8(run);
    value += run;
    if (c == '\'') return String8(value);
    value += readEscaped(it, end);
  }
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
  skipBlanks(it, end);
  std::string_view const rest = it.viewTo(end);
  double value = 0;
  auto const [behind, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
  if (error == std::errc::result_out_of_range) {
    throwRangeException("expected a number that a double can hold, found another");
  }
  if (error != std::errc()) throwExpected("a decimal number", it, end);
  it += static_cast<std::size_t>(behind - rest.data());
  return value;
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
