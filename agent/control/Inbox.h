#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Kest::Agent {

/// What a client has sent and nobody has used yet. Whatever comes, no byte is looked at twice in
/// search of the end of a line, or moved more than a few times.
class Inbox {
 public:
  void add(std::string_view bytes);
  void drop(std::size_t bytes);

  std::string_view bytes() const { return std::string_view(text_).substr(begin_); }
  bool isEmpty() const noexcept { return text_.empty(); }

  bool hasLine() const;
  /// Without its newline. Only after `hasLine` has found one, as `dropLine`.
  std::string_view line() const { return bytes().substr(0, lineEnd_ - begin_); }
  void dropLine() { drop(lineEnd_ + 1 - begin_); }

  /// Bytes of memory.
  std::size_t held() const noexcept { return text_.capacity(); }

 private:
  std::string text_;
  std::size_t begin_ = 0;
  std::size_t mutable searched_ = 0;  // up to here, for the end of the first line
  std::size_t mutable lineEnd_ = std::string::npos;
};

}  // namespace Kest::Agent
