#pragma once

#include <string>

#include "agent/access/GenericJson.h"
#include "agent/access/Target.h"
#include "agent/verbs/Answer.h"
#include "agent/verbs/Request.h"

/// What the replies about values have in common.
namespace Kest::Agent {

/// How a reply shows values, as the request's `form` asks for: as JSON, or as text forms.
class ValueForm {
 public:
  explicit ValueForm(Request const& request)
      : asText_(request.oneOf("form", {"json", "text"}) == "text") {}

  /// JSON text; null for no value.
  std::string show(Mox::GenericIf const* value) const;

 private:
  bool asText_;
};

/// A reply as JSON text: the members `path` and `type`, whatever `others` has, and `value`.
/// @param others with a comma in front of each, as in `,"changed":true`
/// @param value as JSON text
ResultText replyAbout(Target const& target, std::string const& others, std::string const& value);
/// The same up to the value.
std::string replyBefore(Target const& target, std::string const& others = {});

/// Refuses a handler, which is called instead.
void checkIsData(Target const& target);

}  // namespace Kest::Agent
