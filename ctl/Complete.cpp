#include "ctl/Complete.h"

#include <algorithm>

#include "agent/wire/Protocol.h"
#include "ctl/Client.h"
#include "ctl/CommandLine.h"

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

std::string socketOf(std::vector<std::string> const& words) {
  for (std::size_t at = 0; at + 1 < words.size(); ++at) {
    if (words[at] == "--socket") return words[at + 1];
  }
  return Wire::defaultSocketPath().value_or(std::string());
}

/// The devices that are configured.
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

/// How many of the words between the verb and the one that is completed are arguments.
std::size_t argumentsBefore(std::vector<std::string> const& words) {
  std::size_t count = 0;
  for (std::size_t at = 1; at + 1 < words.size(); ++at) {
    bool const isOption = words[at].starts_with("--");
    bool const hasValue = words[at] == "--socket" || words[at] == "--timeout" ||
                          words[at] == "--format" || words[at] == "--count";
    if (!isOption) ++count;
    if (hasValue) ++at;
  }
  return count;
}

std::vector<std::string> candidates(std::vector<std::string> const& words) {
  std::vector<std::string> names;
  if (words.size() <= 1) {
    for (Verb const& verb : verbs()) names.emplace_back(verb.name);
    return names;
  }
  std::string const& word = words.back();
  Verb const* const verb = verbNamed(words.front());
  if (verb == nullptr) return {};
  if (word.starts_with("-")) return optionNames(*verb);
  if (verb->parameters.empty()) return {};
  std::size_t const at = argumentsBefore(words);
  if (at >= verb->parameters.size()) return {};
  Parameter const& parameter = verb->parameters[at];
  switch (parameter.completion) {
    case Completion::path:
      return fromAgent(socketOf(words), "path", word);
    case Completion::type:
      return fromAgent(socketOf(words), "type", word);
    case Completion::handler:
      return fromAgent(socketOf(words), "handler", word);
    case Completion::file:
      return {"file:"};
    case Completion::word:
      return {parameter.words.begin(), parameter.words.end()};
    case Completion::subject:
      return subjects(words[1], socketOf(words), word);
    case Completion::none:
      break;
  }
  return {};
}

}  // namespace

std::vector<std::string> completions(std::vector<std::string> const& words) {
  std::vector<std::string> all = candidates(words);
  std::string const word = words.empty() ? "" : words.back();
  std::erase_if(all, [&](std::string const& candidate) {
    return candidate != "file:" && !candidate.starts_with(word);
  });
  return all;
}

}  // namespace Kest::Ctl
