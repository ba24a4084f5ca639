#pragma once

#include <cstdarg>
#include <exception>
#include <utility>

#include "platform/mox/String8.h"

namespace Mox {

/// A value that is out of its range, or a text that is not the form of a value.
class MOX_API RangeException : public std::exception {
 public:
  explicit RangeException(String8 text) noexcept : text_(std::move(text)) {}
  RangeException(RangeException const&) noexcept = default;
  ~RangeException() override;

  String8 const& text() const noexcept { return text_; }
  char const* what() const noexcept override { return text_.charPtr(); }

 private:
  String8 text_;
};

[[noreturn]] MOX_API void throwRangeException(String8 const& text);

/// printf into a string.
[[gnu::format(printf, 1, 2)]] MOX_API String8 format(char const* format, ...);

}  // namespace Mox
