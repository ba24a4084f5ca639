#include "platform/mox/RangeException.h"

#include <cstdio>
#include <string>

namespace Mox {

RangeException::~RangeException() = default;

void throwRangeException(String8 const& text) {
  throw RangeException(text);
}

String8 format(char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  va_list again;
  va_copy(again, arguments);
  int const length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  std::string text(static_cast<std::size_t>(length), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return String8(text);
}

}  // namespace Mox
