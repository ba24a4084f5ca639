#include "agent/verbs/Request.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "agent/access/ControlError.h"
#include "agent/access/ValueText.h"
#include "text/Escapes.h"
#include "text/NearMatch.h"
#include "text/Words.h"

namespace Kest::Agent {

namespace {

using Wire::ErrorKind;

std::string inQuotes(std::string const& word) {
  return "'" + nameText(Mox::String8(Text::shortened(word))) + "'";
}

std::string listed(std::initializer_list<char const*> words) {
  std::vector<std::string> quoted;
  for (char const* word : words) quoted.push_back(inQuotes(word));
  return Text::listed(quoted, ", ");
}

}  // namespace

void Request::checkMembers(std::initializer_list<char const*> known) const {
  for (auto const& [name, value] : json_.items()) {
    bool const isKnown = name == "verb" || name == "id" ||
                         std::find(known.begin(), known.end(), name) != known.end();
    if (isKnown) continue;
    std::vector<std::string> const candidates(known.begin(), known.end());
    throw ControlError(ErrorKind::request,
                       inQuotes(string("verb")) + " takes no member " + inQuotes(name),
                       Text::nearMatch(name, candidates).value_or(std::string()));
  }
}

Json const* Request::find(char const* member) const {
  auto const found = json_.find(member);
  return found == json_.end() ? nullptr : &*found;
}

std::string Request::string(char const* member) const {
  std::optional<std::string> const value = optionalString(member);
  if (value) return *value;
  throw ControlError(ErrorKind::request,
                     "expected a member " + inQuotes(member) + ", a string, found none");
}

std::optional<std::string> Request::optionalString(char const* member) const {
  Json const* const value = find(member);
  if (value == nullptr) return std::nullopt;
  if (value->is_string()) return value->get<std::string>();
  throw ControlError(ErrorKind::request,
                     "expected a string as " + inQuotes(member) + ", found " + value->type_name());
}

std::string Request::oneOf(char const* member, std::initializer_list<char const*> words) const {
  std::string word = optionalString(member).value_or(*words.begin());
  if (std::find(words.begin(), words.end(), word) != words.end()) return word;
  std::vector<std::string> const candidates(words.begin(), words.end());
  throw ControlError(
      ErrorKind::request,
      "expected one of " + listed(words) + " as " + inQuotes(member) + ", found " + inQuotes(word),
      Text::nearMatch(word, candidates).value_or(std::string()));
}

}  // namespace Kest::Agent
