#pragma once

#include <charconv>
#include <concepts>
#include <string>
#include <string_view>

/// Lines of text, made quickly: a simulation makes millions.
namespace Support {

inline void append(std::string& out, std::string_view part) {
  out += part;
}
inline void append(std::string& out, bool part) {
  out += part ? "true" : "false";
}
template <std::integral Number>
void append(std::string& out, Number part) {
  char digits[24];
  auto const end = std::to_chars(digits, digits + sizeof digits, part).ptr;
  out.append(digits, end);
}
inline void append(std::string& out, char const* part) {
  out += part;
}

template <class... Parts>
std::string text(Parts const&... parts) {
  std::string out;
  out.reserve(64);
  (append(out, parts), ...);
  return out;
}

}  // namespace Support
