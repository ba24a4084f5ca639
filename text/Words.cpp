#include "text/Words.h"

namespace Text {

std::string listed(std::vector<std::string> const& words, std::string_view last) {
  std::string text;
  for (std::size_t at = 0; at < words.size(); ++at) {
    if (at > 0) text += at + 1 == words.size() ? last : ", ";
    text += words[at];
  }
  return text;
}

}  // namespace Text
