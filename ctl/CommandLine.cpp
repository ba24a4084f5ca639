#include "ctl/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

#include "ctl/Version.h"
#include "text/Escapes.h"
#include "text/NearMatch.h"

namespace Kest::Ctl {

namespace {

/// A check for CLI11: returns what is wrong, or nothing.
template <class Number>
std::string positive(std::string const& text) {
  Number number{};
  char const* const end = text.data() + text.size();
  auto const [rest, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && rest == end && number > Number{}) return "";
  return "expected a number above 0, found '" + text + "'";
}

void addOptions(CLI::App& command, Verb const& verb, Options& options) {
  command.add_option("--socket", options.socket, "The agent's control socket")->type_name("PATH");
  command.add_option("--timeout", options.timeout, "How long to wait for the agent, in seconds")
      ->type_name("SECONDS")
      ->check(positive<double>);
  command.add_flag("--json", options.json, "One JSON document, for errors too");
  if (verb.hasForm) command.add_flag("--text", options.text, "Values as text forms");
  if (verb.isSet) {
    command.add_flag("--replace", options.replace,
                     "Fields that a JSON record does not name get their defaults");
  }
  if (verb.isDump) {
    command.add_option("--format", options.format, "slice or json")
        ->type_name("FORMAT")
        ->check(CLI::IsMember(formats()));
    command.add_option("-o,--output", options.output, "File to write; it is replaced as a whole")
        ->type_name("FILE");
  }
  if (verb.isWatch) {
    command.add_option("--count", options.count, "End after so many changes")
        ->type_name("N")
        ->check(positive<std::size_t>);
  }
}

std::string synopsis(Verb const& verb) {
  std::string text;
  for (Parameter const& parameter : verb.parameters) {
    std::string const name = std::string(parameter.name) + (parameter.isRepeated ? "..." : "");
    text += " " + (parameter.isOptional ? "[" + name + "]" : name);
  }
  return text;
}

/// A verb's command line, which reads into `options`.
class VerbLine {
 public:
  VerbLine(Verb const& verb, Options& options)
      : app_(verb.help, std::string("kestctl ") + verb.name),
        verb_(verb),
        options_(options),
        given_(verb.parameters.size()) {
    addOptions(app_, verb, options);
    for (std::size_t at = 0; at < given_.size(); ++at) {
      Parameter const& parameter = verb.parameters[at];
      CLI::Option* const option = app_.add_option(parameter.name, given_[at]);
      option->required(!parameter.isOptional);
      option->expected(1, parameter.isRepeated ? most : 1);
      option->allow_extra_args(parameter.isRepeated);
    }
  }
  VerbLine(VerbLine const&) = delete;
  VerbLine& operator=(VerbLine const&) = delete;

  CLI::App& app() { return app_; }

  void parse(std::vector<std::string> words) {
    guardLists(words);
    std::reverse(words.begin(), words.end());  // as CLI11 takes them
    app_.parse(std::move(words));
    for (auto const& given : given_) {
      for (std::string const& argument : given) take(argument);
    }
    checkFirstWord();
  }

 private:
  static constexpr int most = 64;
  static constexpr char guard = '\0';  // no word of a command line has it

  /// Protects `[a,b]`, which CLI11 would split where an argument may be repeated.
  void guardLists(std::vector<std::string>& words) const {
    if (verb_.parameters.empty() || !verb_.parameters.back().isRepeated) return;
    for (std::string& word : words) {
      if (word.starts_with('[')) word += guard;
    }
  }

  void take(std::string argument) {
    if (argument.ends_with(guard)) argument.pop_back();
    options_.arguments.push_back(std::move(argument));
    if (Text::isUtf8(options_.arguments.back())) return;
    throw usageFailure(std::string(verb_.name) + ": expected UTF-8 in argument " +
                       std::to_string(options_.arguments.size()));
  }

  /// Refuses a first argument that is not one of the words that the verb knows.
  void checkFirstWord() const {
    if (verb_.parameters.empty() || options_.arguments.empty()) return;
    Parameter const& first = verb_.parameters.front();
    if (first.isOptional || first.words.empty()) return;
    std::vector<std::string> const words(first.words.begin(), first.words.end());
    std::string const& word = options_.arguments.front();
    if (std::find(words.begin(), words.end(), word) != words.end()) return;
    throw usageFailure(std::string(verb_.name) + " has no action '" + word + "'",
                       Text::nearMatch(word, words).value_or(std::string()));
  }

  CLI::App app_;
  Verb const& verb_;
  Options& options_;
  std::vector<std::vector<std::string>> given_;  // by parameter
};

std::string overview() {
  std::string text =
      "Talks to a running kest-slice-agent.\nUsage: kestctl VERB [ARGUMENTS] [OPTIONS]\n\nVerbs:\n";
  std::size_t widest = 0;
  for (Verb const& verb : verbs()) {
    widest = std::max(widest, std::string(verb.name).size() + synopsis(verb).size());
  }
  for (Verb const& verb : verbs()) {
    std::string call = verb.name + synopsis(verb);
    call.resize(widest, ' ');
    text += "  " + call + "  " + verb.help + "\n";
  }
  return text +
         "\nOptions of every verb: --socket PATH, --timeout SECONDS, --json, --help.\n"
         "The socket is --socket, KEST_SLICE_AGENT_SOCKET, /run/kest-slice-agent.sock for root, "
         "or\n"
         "kest-slice-agent.sock in XDG_RUNTIME_DIR.\n"
         "Exit codes: 0 done, 1 failed or different, 2 usage, 3 no agent, 4 timed out.\n";
}

}  // namespace

std::variant<Command, std::string> readCommandLine(std::vector<std::string> const& words) {
  if (words.empty()) throw usageFailure("expected a verb; kestctl --help lists them");
  std::string const& name = words.front();
  if (name == "--help" || name == "-h") return overview();
  if (name == "--version") return std::string("kestctl ") + version + "\n";
  Command command;
  if (name.starts_with("-")) {
    throw usageFailure("expected a verb before '" + name + "'; kestctl --help lists them");
  }
  command.verb = verbNamed(name);
  if (command.verb == nullptr) {
    std::vector<std::string> names;
    for (Verb const& verb : verbs()) names.emplace_back(verb.name);
    throw usageFailure("there is no verb '" + name + "'; kestctl --help lists them",
                       Text::nearMatch(name, names).value_or(std::string()));
  }
  VerbLine line(*command.verb, command.options);
  try {
    line.parse({words.begin() + 1, words.end()});
  } catch (CLI::CallForHelp const&) {
    return line.app().help();
  } catch (CLI::ParseError const& error) {
    throw usageFailure(name + ": " + error.what());
  }
  return command;
}

std::vector<std::string> formats() {
  return {"slice", "json"};
}

std::string optionValue(Verb const& verb, std::string const& name) {
  Options options;
  VerbLine line(verb, options);
  for (CLI::Option const* option : line.app().get_options()) {
    if (option->check_name(name) && option->nonpositional() &&
        option->get_items_expected_max() > 0) {
      std::string const type = option->get_type_name();
      return type.substr(0, type.find(':'));  // what its check allows follows
    }
  }
  return "";
}

std::vector<std::string> optionNames(Verb const& verb) {
  Options options;
  VerbLine line(verb, options);
  std::vector<std::string> names;
  for (CLI::Option const* option : line.app().get_options()) {
    for (std::string const& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

}  // namespace Kest::Ctl
