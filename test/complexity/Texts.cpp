#include "test/complexity/Texts.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "test/support/KeysOfHash.h"

namespace Kest::Complexity {

namespace {

/// As many as fit into the largest text.
constexpr std::size_t keyCount = std::size_t{256} * 1024 / 16 + 1;

std::string const& keyOfOneHash(std::size_t number) {
  static std::vector<std::string> const keys = Support::KeysOfHash().next(keyCount, 0);
  return keys.at(number);
}

std::string const& keyOfNextHash(std::size_t number) {
  static std::vector<std::string> const keys = Support::KeysOfHash().next(keyCount, 1);
  return keys.at(number);
}

std::string filledIn(std::string const& piece, std::size_t number) {
  std::string text;
  for (char const c : piece) {
    switch (c) {
      case '@':
        text += std::to_string(number);
        break;
      case '%':
        text += keyOfOneHash(number);
        break;
      case '^':
        text += keyOfNextHash(number);
        break;
      default:
        text += c;
    }
  }
  return text;
}

/// Adds pieces until `text` has so many bytes.
void fill(std::string& text, std::string const& piece, std::size_t bytes) {
  for (std::size_t number = 0; text.size() < bytes; ++number) text += filledIn(piece, number);
}

}  // namespace

Case pieces(char const* name, std::string start, std::string piece, std::string end) {
  return {name, [=](std::size_t bytes) {
            std::string text = start;
            fill(text, piece, bytes - std::min(bytes, end.size()));
            return text + end;
          }};
}

Case halves(char const* name, std::string start, std::string piece, std::string middle,
            std::string more, std::string end) {
  return {name, [=](std::size_t bytes) {
            std::string text = start;
            fill(text, piece, bytes / 2);
            text += middle;
            fill(text, more, bytes - std::min(bytes, end.size()));
            return text + end;
          }};
}

Case nested(char const* name, std::string start, std::string open, std::string middle,
            std::string close, std::string end) {
  return {name, [=](std::size_t bytes) {
            std::string text = start, closing;
            for (std::size_t depth = 0; text.size() + closing.size() < bytes; ++depth) {
              text += filledIn(open, depth);
              closing += close;
            }
            return text + middle + closing + end;
          }};
}

std::vector<Case> both(std::vector<Case> cases, std::vector<Case> more) {
  std::move(more.begin(), more.end(), std::back_inserter(cases));
  return cases;
}

std::vector<Case> jsonTexts(std::string const& field, std::string const& end) {
  return {
      pieces("unknown members", field + "\"\"", ",\"x@\":1", "}" + end),
      pieces("unknown members of one hash", field + "\"\"", ",\"%\":1", "}" + end),
      pieces("equal members", field + "\"\"", ",\"x\":1", "}" + end),
      pieces("long member", "{\"", "x", "\":1}" + end),
      pieces("blanks", "{", " ", "}" + end),
      pieces("value of many members", field + "{\"x\":0", ",\"m@\":0", "}}" + end),
      pieces("value of many elements", field + "[0", ",0", "]}" + end),
      pieces("value of many objects", field + "[0", ",{\"m\":{}}", "]}" + end),
      pieces("long number", field, "1", "}" + end),
      pieces("long string", field + "\"", "x", "\"}" + end),
      pieces("string of escapes", field + "\"", "\\u0041", "\"}" + end),
      pieces("string of escaped controls", field + "\"", "\\u0001", "\"}" + end),
      pieces("string of bytes that are no characters", field + "\"", "\x80", "\"}" + end),
      pieces("zero bytes in a string", field + "\"", std::string(1, '\0'), "\"}" + end),
      pieces("zero bytes", "{", std::string(1, '\0'), "}" + end),
      pieces("unterminated string", field + "\"", "x", end),
      nested("deep", field, "[", "", "]", "}" + end),
      nested("deep objects", "", "{\"x\":", "1", "}", end),
      pieces("unterminated deep", "", "{\"a\":", end),
      pieces("no JSON", "", "x", end),
  };
}

void prepareKeys() {
  keyOfOneHash(0);
  keyOfNextHash(0);
}

}  // namespace Kest::Complexity
