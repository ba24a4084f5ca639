#pragma once

#include "agent/access/GenericJson.h"
#include "agent/access/Target.h"
#include "agent/verbs/Request.h"

/// What the replies about values have in common.
namespace Kest::Agent {

/// How a reply shows values, as the request's `form` asks for: as JSON, or as text forms.
class ValueForm {
 public:
  explicit ValueForm(Request const& request)
      : asText_(request.oneOf("form", {"json", "text"}) == "text") {}

  /// Null for no value.
  Json show(Mox::GenericIf const* value) const;

 private:
  bool asText_;
};

/// The members `path` and `type`, with which a reply begins.
Json replyAbout(Target const& target);

/// Refuses a handler, which is called instead.
void checkIsData(Target const& target);

}  // namespace Kest::Agent
