#include "ctl/Verbs.h"

#include <algorithm>
#include <utility>

#include "ctl/Failure.h"
#include "ctl/Files.h"
#include "ctl/Present.h"

namespace Kest::Ctl {

namespace {

Json nothing(Options const&) {
  return Json::object();
}

Json withForm(Options const& options, Json request) {
  if (options.text) request["form"] = "text";
  return request;
}

Json path(Options const& options) {
  return withForm(options, {{"path", options.arguments.at(0)}});
}

Json pathAndText(Options const& options) {
  Json request{{"path", options.arguments.at(0)}, {"text", options.arguments.at(1)}};
  if (options.replace) request["replace"] = true;
  return withForm(options, std::move(request));
}

Json handlerAndArguments(Options const& options) {
  Json arguments = Json::array();
  for (std::size_t at = 1; at < options.arguments.size(); ++at) {
    arguments.push_back(options.arguments[at]);
  }
  return {{"handler", options.arguments.at(0)}, {"args", arguments}};
}

/// Tells JSON from statements, none of which begins with a brace.
bool beginsAsJson(std::string const& content) {
  std::size_t const first = content.find_first_not_of(" \t\r\n");
  return first != std::string::npos && content[first] == '{';
}

std::string sliceFile(Options const& options, Json& request) {
  std::string const& file = options.arguments.at(0);
  bool const isInput = file == "-";
  std::string content = isInput ? bytesOfInput() : bytesOf(file);
  request["file"] = isInput ? "standard input" : file;
  if (isInput) request["format"] = beginsAsJson(content) ? "json" : "slice";
  request["bytes"] = content.size();
  return content;
}

Json driverAction(Options const& options) {
  std::string const& action = options.arguments.at(0);
  std::optional<std::string> const subject = options.argument(1);
  Json request{{"action", action}};
  bool const needsSubject = action == "fault" || action == "flip";
  if (needsSubject != subject.has_value()) {
    throw usageFailure(needsSubject ? "driver " + action + " needs " +
                                          (action == "flip" ? "a DEVICE" : "a FILE, or -")
                                    : "driver " + action + " takes no further argument");
  }
  if (action == "flip") request["device"] = *subject;
  if (action == "fault") {
    request["text"] = *subject == "-" ? contentOfInput() : contentOf(*subject);
  }
  return request;
}

/// A request with the first argument as a member, if there is one.
template <char const* member>
Json optional(Options const& options) {
  Json request = Json::object();
  if (auto const value = options.argument(0)) request[member] = *value;
  return request;
}

constexpr char settingMember[] = "setting";
constexpr char modeMember[] = "mode";

constexpr double applyTimeout = 300;

}  // namespace

std::span<Verb const> verbs() {
  Parameter const path_{"PATH", Completion::path};
  Parameter const file{"FILE", Completion::file};
  static std::vector<Verb> const all{
      {"types", "List the types of the registry", {}, nothing, presentTypes},
      {"describe",
       "Describe a type: constructor, attributes, handlers",
       {{"TYPE", Completion::type}},
       [](Options const& options) -> Json {
         return {{"type", options.arguments.at(0)}};
       },
       presentType},
      {.name = "get",
       .help = "Read an object, an attribute, an entry or a field",
       .parameters = {path_},
       .request = path,
       .present = presentValue,
       .hasForm = true},
      {.name = "set",
       .help = "Change an attribute, an entry or a field",
       .parameters = {path_, {"VALUE", Completion::none}},
       .request = pathAndText,
       .present = presentSet,
       .hasForm = true,
       .isSet = true},
      {.name = "del",
       .help = "Remove an entry",
       .parameters = {path_},
       .request = path,
       .present = presentRemoved,
       .hasForm = true},
      {"notify", "Announce an entry again", {path_}, path, presentNotified},
      {"call",
       "Call a handler of the state machine; doVerify asserts",
       {{"HANDLER", Completion::handler}, {"ARGS", Completion::none, true, true}},
       handlerAndArguments,
       presentCalled},
      {"verify",
       "Report where configuration, status and driver differ; fails if they do",
       {},
       nothing,
       presentDifferences},
      {"show",
       "Show devices and ports: configuration / status / driver",
       {},
       nothing,
       presentSlice},
      {.name = "apply",
       .help = "Bring the configuration in line with a slice file",
       .parameters = {file},
       .request = nothing,
       .present = presentApplied,
       .timeout = applyTimeout,
       .file = sliceFile},
      {.name = "diff",
       .help = "Show what apply would change; fails if that is anything",
       .parameters = {file},
       .request = nothing,
       .present = presentSteps,
       .timeout = applyTimeout,
       .file = sliceFile},
      {.name = "dump",
       .help = "Write the configuration as a slice file",
       .parameters = {},
       .request = [](Options const& options) -> Json {
         return {{"format", options.format}};
       },
       .present = presentContent,
       .isDump = true},
      {.name = "watch",
       .help = "Show changes of configuration and status as they happen",
       .parameters = {},
       .request = nothing,
       .present = presentNothing,
       .isWatch = true},
      {"trace",
       "Show the trace setting, or change it: FACILITY/LEVELS[,...]",
       {{"SETTING", Completion::word, true, false, {"KestSliceDma/"}}},
       optional<settingMember>,
       presentSetting},
      {"driver",
       "Inspect or steer the simulated driver: log, dump, state, fault FILE, flip DEVICE",
       {{"ACTION", Completion::word, false, false, {"log", "dump", "state", "fault", "flip"}},
        {"SUBJECT", Completion::subject, true}},
       driverAction,
       presentDriver},
      {"mode",
       "Show the state machine's mode, or set it",
       {{"MODE", Completion::word, true, false, {"initial", "standby", "polling"}}},
       optional<modeMember>,
       presentMode},
  };
  return all;
}

Verb const* verbNamed(std::string const& name) {
  auto const all = verbs();
  auto const found =
      std::find_if(all.begin(), all.end(), [&](Verb const& verb) { return verb.name == name; });
  return found == all.end() ? nullptr : &*found;
}

}  // namespace Kest::Ctl
