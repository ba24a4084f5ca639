#include "agent/verbs/ValueReply.h"

#include <nlohmann/json.hpp>

#include "agent/access/ControlError.h"

namespace Kest::Agent {

Json ValueForm::show(Mox::GenericIf const* value) const {
  if (value == nullptr) return nullptr;
  return asText_ ? Json(std::string(value->strRep().view())) : toJson(*value);
}

Json replyAbout(Target const& target) {
  return {{"path", target.path}, {"type", std::string(target.type().fullName().view())}};
}

void checkIsData(Target const& target) {
  if (target.attribute->introspectionClass != Mox::IntrospectionClass::handler) return;
  throw ControlError(Wire::ErrorKind::refused, target.shown() + " is a handler: call it");
}

}  // namespace Kest::Agent
