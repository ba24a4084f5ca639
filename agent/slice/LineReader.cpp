#include "agent/slice/LineReader.h"

#include <cctype>

#include "text/Escapes.h"

namespace Kest::Agent {

bool LineReader::isDone() {
  skipBlanks();
  return at_ == end_ || *at_ == '#';
}

std::string LineReader::keyword() {
  skipBlanks();
  std::string letters;
  for (auto at = at_; !(at == end_) && std::isalpha(static_cast<unsigned char>(*at)) != 0; ++at) {
    letters += *at;
  }
  return letters;
}

std::string LineReader::word() const {
  std::string chars;
  for (auto at = at_; !(at == end_) && *at != ' ' && *at != '\t'; ++at) chars += *at;
  return chars;
}

std::vector<Mox::String8> LineReader::strings() const {
  std::vector<Mox::String8> all;
  for (Mox::String8::IteratorConst at = at_; !(at == end_);) {
    if (*at != '\'') {
      ++at;
      continue;
    }
    try {
      all.push_back(Mox::sequenceToValue(at, end_, static_cast<Mox::String8*>(nullptr)));
    } catch (Mox::RangeException const&) {
      break;  // who reads the line says what is wrong with it
    }
  }
  return all;
}

void LineReader::refuse(std::string_view expected) const {
  std::string text = "expected ";
  text.append(expected).append(", found '").append(Text::shortened(word())).append("'");
  Mox::throwRangeException(Mox::String8(text));
}

}  // namespace Kest::Agent
