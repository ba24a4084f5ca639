#include "platform/mox/Strep.h"

#include <array>
#include <charconv>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/mox/Dir.h"
#include "platform/mox/Entity.h"

namespace Mox {

namespace {

using Iterator = String8::IteratorConst;

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isControl(char c) {
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

int hexDigit(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

char readHexByte(Iterator& it, Iterator const& end) {
  int value = 0;
  for (int digits = 0; digits < 2; ++digits) {
    int const digit = it == end ? -1 : hexDigit(*it);
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
  constexpr unsigned long long most = std::numeric_limits<Unsigned>::max();
  skipBlanks(it, end);
  Iterator const start = it;
  if (it == end || !isDigit(*it)) throwExpected("a decimal number", it, end);
  unsigned long long value = 0;
  for (; !(it == end) && isDigit(*it); ++it) {
    auto const digit = static_cast<unsigned>(*it - '0');
    bool const fits = value < most / 10 || (value == most / 10 && digit <= most % 10);
    value = value * 10 + digit;
    if (!fits) {
      it = start;
      throwRangeException(format("expected a number from 0 to %llu, found a larger one", most));
    }
  }
  return static_cast<Unsigned>(value);
}

/// Takes `word` if it stands at `it`.
bool tookWord(Iterator& it, Iterator const& end, std::string_view word) {
  if (!it.viewTo(end).starts_with(word)) return false;
  it += word.size();
  return true;
}

}  // namespace

String8 valueToStrep(String8 const& value) {
  std::string text;
  text.reserve(value.bytes() + 2);
  text += '\'';
  for (char const c : value.view()) {
    Escape const* escape = nullptr;
    for (Escape const& candidate : escapes) {
      if (candidate.character == c) escape = &candidate;
    }
    if (escape != nullptr) {
      (text += '\\') += escape->letter;
    } else if (isControl(c)) {
      text += format("\\x%02x", static_cast<unsigned>(c)).view();
    } else {
      text += c;
    }
  }
  text += '\'';
  return String8(text);
}

String8 valueToStrep(unsigned long long value) {
  return String8(std::to_string(value));
}

String8 valueToStrep(double value) {
  std::array<char, 32> digits{};
  char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  std::string text(digits.data(), end);
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
    if (it == end) throwExpected("the string's closing apostrophe", it, end);
    char const c = *it;
    ++it;
    if (c == '\'') return String8(value);
    value += c == '\\' ? readEscaped(it, end) : c;
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
  throw RangeException(format("%s: %s", attributeName, exception.text().charPtr()));
}

void detail::throwJunk(Iterator const& at, String8 const& text) {
  throwRangeException(format("junk at column %lld deserializing %s",
                             static_cast<long long>(at.pos()), text.charPtr()));
}

}  // namespace Mox
