#include "agent/LineReader.h"

#include <cctype>

namespace Kest::Agent {

bool LineReader::isDone() {
  skipBlanks();
  return at_ == end_ || *at_ == '#';
}

std::string LineReader::keyword() {
  skipBlanks();
  std::string_view const rest = at_.viewTo(end_);
  std::size_t length = 0;
  while (length < rest.size() && std::isalpha(static_cast<unsigned char>(rest[length])) != 0) {
    ++length;
  }
  return std::string(rest.substr(0, length));
}

void LineReader::refuse(std::string_view expected) const {
  std::string_view const rest = at_.viewTo(end_);
  std::string text = "expected ";
  text.append(expected).append(", found '").append(rest.substr(0, rest.find_first_of(" \t")));
  Mox::throwRangeException(Mox::String8(text.append("'")));
}

}  // namespace Kest::Agent
