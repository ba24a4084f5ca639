#include "ctl/Complete.h"

#include <algorithm>

#include "agent/wire/Protocol.h"
#include "ctl/Client.h"
#include "ctl/CommandLine.h"
#include "text/Escapes.h"

namespace Kest::Ctl {

namespace {

constexpr double patience = 1;  // seconds

std::vector<std::string> fromAgent(std::string const& socket, char const* what,
                                   std::string const& beginning) {
  try {
    Client::Deadline const deadline = Client::after(patience);
    Client client(socket, deadline);
    return client.ask({{"verb", "complete"}, {what, beginning}}, deadline);
  } catch (std::exception const&) {
    return {};  // completion is silent
  }
}

/// The words after the verb, as far as they can be read.
struct Line {
  std::vector<std::string> arguments;  // without the word that is completed
  std::string socket = Wire::defaultSocketPath().value_or(std::string());
  std::string valueOf;       // the kind of value, if the last word is an option's; else empty
  bool takesOptions = true;  // no `--` yet
};

Line read(Verb const& verb, std::vector<std::string> const& words) {
  Line line;
  for (std::size_t at = 1; at + 1 < words.size(); ++at) {
    std::string const& word = words[at];
    std::string const value = line.takesOptions ? optionValue(verb, word) : "";
    if (!value.empty()) {
      ++at;
      if (at + 1 == words.size()) line.valueOf = value;
      if (word == "--socket") line.socket = words[at];
    } else if (line.takesOptions && word == "--") {
      line.takesOptions = false;
    } else if (!line.takesOptions || !word.starts_with("--")) {
      line.arguments.push_back(word);
    }
  }
  return line;
}

/// The configured devices.
std::vector<std::string> devices(std::string const& socket, std::string const& beginning) {
  std::string const folder = "config/device/";
  std::vector<std::string> names = fromAgent(socket, "path", folder + beginning);
  for (std::string& name : names) name.erase(0, folder.size());
  return names;
}

std::vector<std::string> subjects(std::string const& action, std::string const& socket,
                                  std::string const& beginning) {
  if (action == "fault") return {"file:"};
  return action == "flip" ? devices(socket, beginning) : std::vector<std::string>();
}

std::vector<std::string> optionValues(std::string const& what) {
  if (what == "FILE" || what == "PATH") return {"file:"};
  return what == "FORMAT" ? formats() : std::vector<std::string>();
}

std::vector<std::string> arguments(Verb const& verb, Line const& line, std::string const& word) {
  std::size_t const at = line.arguments.size();
  if (at >= verb.parameters.size()) return {};
  Parameter const& parameter = verb.parameters[at];
  switch (parameter.completion) {
    case Completion::path:
      return fromAgent(line.socket, "path", word);
    case Completion::type:
      return fromAgent(line.socket, "type", word);
    case Completion::handler:
      return fromAgent(line.socket, "handler", word);
    case Completion::file:
      return {"file:"};
    case Completion::word:
      return {parameter.words.begin(), parameter.words.end()};
    case Completion::subject:
      return subjects(line.arguments.front(), line.socket, word);
    case Completion::none:
      break;
  }
  return {};
}

std::vector<std::string> candidates(std::vector<std::string> const& words) {
  std::vector<std::string> names;
  if (words.size() <= 1) {
    for (Verb const& verb : verbs()) names.emplace_back(verb.name);
    return names;
  }
  Verb const* const verb = verbNamed(words.front());
  if (verb == nullptr) return {};
  Line const line = read(*verb, words);
  if (!line.valueOf.empty()) return optionValues(line.valueOf);
  if (line.takesOptions && words.back().starts_with("-")) return optionNames(*verb);
  return arguments(*verb, line, words.back());
}

}  // namespace

std::vector<std::string> completions(std::vector<std::string> const& words) {
  std::vector<std::string> all = candidates(words);
  std::string const word = words.empty() ? "" : words.back();
  std::erase_if(all, [&](std::string const& candidate) {
    bool const isShell = candidate == "file:";
    bool const isPrintable = Text::visible(candidate) == candidate;
    return !isShell && !(isPrintable && candidate.starts_with(word));
  });
  return all;
}

}  // namespace Kest::Ctl
