#include "text/NearMatch.h"

#include <algorithm>

namespace Text {

namespace {

std::string lower(std::string_view text) {
  std::string all(text);
  for (char& c : all) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return all;
}

}  // namespace

std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> rows(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) rows[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j) rows[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      std::size_t const replaced = rows[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      rows[i][j] = std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, replaced});
      bool const swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
    }
  }
  return rows[a.size()][b.size()];
}

std::optional<std::string> nearMatch(std::string_view name,
                                     std::vector<std::string> const& candidates) {
  constexpr std::size_t longest = 100;  // nobody mistypes more, and the work grows with its square
  constexpr std::size_t lettersPerMistake = 3;
  if (name.empty() || name.size() > longest) return std::nullopt;
  std::string const wanted = lower(name);
  std::size_t nearest = name.size() / lettersPerMistake + 1;
  std::optional<std::string> found;
  for (std::string const& candidate : candidates) {
    if (candidate.size() > longest) continue;
    auto const [shorter, longer] = std::minmax({candidate.size(), name.size()});
    if (longer - shorter >= nearest) continue;  // so many letters more
    std::size_t const distance = editDistance(wanted, lower(candidate));
    if (distance < nearest) {
      nearest = distance;
      found = candidate;
    }
  }
  if (found) return found;
  auto const beginsSo = [&](std::string const& candidate) {
    return lower(candidate).starts_with(wanted);
  };
  if (std::count_if(candidates.begin(), candidates.end(), beginsSo) != 1) return std::nullopt;
  return *std::find_if(candidates.begin(), candidates.end(), beginsSo);
}

}  // namespace Text
