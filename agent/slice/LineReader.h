#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/detail/Collection.h"
#include "platform/mox/Strep.h"
#include "platform/mox/String8.h"

namespace Kest::Agent {

/// Reads one line of a slice file. What is refused is refused with a `Mox::RangeException`, where
/// the reader then stands.
class LineReader {
 public:
  explicit LineReader(std::string_view line) : text_(line), at_(text_.begin()), end_(text_.end()) {}
  LineReader(LineReader const&) = delete;
  LineReader& operator=(LineReader const&) = delete;

  /// From 0, in bytes.
  std::size_t column() const { return at_.pos(); }

  /// Whether nothing but a comment is left.
  bool isDone();

  /// The letters that come next; they are not taken.
  std::string keyword();

  /// What comes next, up to a blank; it is not taken.
  std::string word() const;

  /// The strings in apostrophes that come next, whatever is between them; they are not taken.
  std::vector<Mox::String8> strings() const;

  void skip(std::size_t characters) {
    for (; characters > 0; --characters) ++at_;
  }

  [[noreturn]] void refuse(std::string_view expected) const;

  /// Reads a value and checks it; one that fails the check is refused where it starts.
  template <class T, class Check>
  T value(Check const& check) {
    skipBlanks();
    Mox::String8::IteratorConst const start = at_;
    T value = read<T>();
    Mox::String8::IteratorConst const after = std::exchange(at_, start);
    check(value);
    at_ = after;
    return value;
  }

 private:
  template <class T>
  T read() {
    if constexpr (Hardware::Kest::Slice::detail::IsRecord<T>) {
      return T(at_, end_);
    } else {
      using Mox::sequenceToValue;
      return sequenceToValue(at_, end_, static_cast<T*>(nullptr));
    }
  }

  void skipBlanks() { Mox::needString(at_, end_, " "); }

  Mox::String8 text_;
  Mox::String8::IteratorConst at_;
  Mox::String8::IteratorConst end_;
};

}  // namespace Kest::Agent
