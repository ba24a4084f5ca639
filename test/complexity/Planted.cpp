#include <algorithm>
#include <cstring>

#include "test/complexity/Texts.h"

namespace Kest::Complexity {

namespace {

/// Results go here, so that the compiler cannot leave the work out.
std::size_t volatile plantedSum = 0;

void readOnce(std::string const& text) {
  Counted const counted;
  std::size_t sum = 0;
  for (char const c : text) sum += static_cast<unsigned char>(c);
  plantedSum = sum;
}

/// Sorts: n log n.
void sortWords(std::string const& text) {
  std::vector<std::string> words;
  for (std::size_t at = 0; at + 4 <= text.size(); at += 4) words.push_back(text.substr(at, 4));
  Counted const counted;
  std::sort(words.begin(), words.end());
}

/// Looks for each line among those before it.
void readLinesTwice(std::string const& text) {
  Counted const counted;
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t const end = std::min(text.find('\n', at), text.size());
    std::string line = text.substr(at, end - at);
    if (std::find(lines.begin(), lines.end(), line) == lines.end()) lines.push_back(line);
    at = end + 1;
  }
  plantedSum = lines.size();
}

/// Takes each line off the front, which moves the rest every time.
void cutLines(std::string text) {
  Counted const counted;
  while (!text.empty()) text.erase(0, std::min(text.find('\n'), text.size() - 1) + 1);
}

}  // namespace

std::vector<Reader> plantedReaders() {
  std::vector<Case> const lines{pieces("many lines", "", "line @\n")};
  return {{"planted: linear", readOnce, lines},
          {"planted: n log n", sortWords, lines},
          {"planted: quadratic", readLinesTwice, lines},
          {"planted: quadratic moves", cutLines, lines}};
}

}  // namespace Kest::Complexity
