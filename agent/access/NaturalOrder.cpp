#include "agent/access/NaturalOrder.h"

#include <algorithm>

namespace Kest::Agent {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Cuts the number off the front, without its leading zeros.
std::string_view takeNumber(std::string_view& text) {
  auto const digitsEnd = std::find_if_not(text.begin(), text.end(), isDigit);
  std::string_view number = text.substr(0, static_cast<std::size_t>(digitsEnd - text.begin()));
  text.remove_prefix(number.size());
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  return number;
}

/// Below, equal to or above 0 when `a` comes before, together with or after `b`.
int compare(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (isDigit(a.front()) && isDigit(b.front())) {
      std::string_view const numberA = takeNumber(a);
      std::string_view const numberB = takeNumber(b);
      if (numberA.size() != numberB.size()) return numberA.size() < numberB.size() ? -1 : 1;
      if (int const order = numberA.compare(numberB); order != 0) return order;
    } else {
      if (a.front() != b.front()) return a.front() < b.front() ? -1 : 1;
      a.remove_prefix(1);
      b.remove_prefix(1);
    }
  }
  return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

}  // namespace

bool naturalLess(std::string_view a, std::string_view b) {
  int const order = compare(a, b);
  return order != 0 ? order < 0 : a < b;
}

}  // namespace Kest::Agent
