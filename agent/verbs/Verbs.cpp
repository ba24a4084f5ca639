#include "agent/verbs/Verbs.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "agent/access/ControlError.h"
#include "agent/access/ValueText.h"
#include "platform/mox/Trace.h"
#include "text/NearMatch.h"

namespace Kest::Agent {

using Wire::ErrorKind;

struct Verbs::Verb {
  char const* name;
  /// Whether the request changes something, or takes as long as the whole state is large.
  bool (*changes)(Request const& request);
  Answer (Verbs::*carryOut)(Request const& request);
};

std::span<Verbs::Verb const> Verbs::all() {
  constexpr auto never = [](Request const&) { return false; };
  constexpr auto always = [](Request const&) { return true; };
  static Verb const verbs[] = {
      {"types", never, &Verbs::types},
      {"describe", never, &Verbs::describe},
      {"get", never, &Verbs::get},
      {"set", always, &Verbs::set},
      {"del", always, &Verbs::del},
      {"notify", always, &Verbs::notify},
      {"call", always, &Verbs::call},
      {"verify", never, &Verbs::verify},
      {"show", never, &Verbs::show},
      {"apply", always, &Verbs::apply},
      {"diff", never, &Verbs::diff},
      {"dump", never, &Verbs::dump},
      {"trace", [](Request const& request) { return request.find("setting") != nullptr; },
       &Verbs::trace},
      {"driver",
       [](Request const& request) {
         std::string const action = request.string("action");
         bool const isOfWholeState = action == "dump" || action == "state";
         return isOfWholeState || action == "fault" || action == "flip";
       },
       &Verbs::driver},
      {"mode", [](Request const& request) { return request.find("mode") != nullptr; },
       &Verbs::mode},
      {"complete", never, &Verbs::complete},
  };
  return verbs;
}

Answer Verbs::carryOut(Json const& json, bool mayChange, Later later) {
  Request const request(json, std::move(later));
  std::string const name = request.string("verb");
  auto const verb = std::find_if(all().begin(), all().end(),
                                 [&](Verb const& candidate) { return candidate.name == name; });
  if (verb == all().end()) {
    std::vector<std::string> names{"watch"};
    for (Verb const& candidate : all()) names.emplace_back(candidate.name);
    throw ControlError(ErrorKind::request,
                       "there is no verb '" + nameText(Mox::String8(name)) + "'",
                       Text::nearMatch(name, names).value_or(std::string()));
  }
  if (!mayChange && verb->changes(request)) {
    throw ControlError(
        ErrorKind::denied,
        "'" + name + "' changes the agent or holds it up: only root and the agent's user may");
  }
  return (this->*verb->carryOut)(request);
}

void Verbs::checkIdle() const {
  if (!agent_.isApplying()) return;
  throw ControlError(ErrorKind::busy, "a slice file is being applied: try again when it is done");
}

Answer Verbs::trace(Request const& request) {
  request.checkMembers({"setting"});
  if (auto const setting = request.optionalString("setting")) Mox::traceSettingIs(*setting);
  return Json{{"setting", std::string(Mox::traceSetting().view())}};
}

}  // namespace Kest::Agent
