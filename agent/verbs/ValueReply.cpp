#include "agent/verbs/ValueReply.h"

#include "agent/access/ControlError.h"
#include "agent/access/JsonText.h"

namespace Kest::Agent {

std::string ValueForm::show(Mox::GenericIf const* value) const {
  std::string text;
  if (value == nullptr) {
    text = "null";
  } else if (asText_) {
    appendJsonString(text, value->strRep().view());
  } else {
    appendJson(text, *value);
  }
  return text;
}

std::string replyBefore(Target const& target, std::string const& others) {
  std::string text = R"({"path":)";
  appendJsonString(text, target.path);
  text += R"(,"type":)";
  appendJsonString(text, target.type().fullName().view());
  return text + others + R"(,"value":)";
}

ResultText replyAbout(Target const& target, std::string const& others, std::string const& value) {
  return {replyBefore(target, others) + value + "}"};
}

void checkIsData(Target const& target) {
  if (target.attribute->introspectionClass != Mox::IntrospectionClass::handler) return;
  throw ControlError(Wire::ErrorKind::refused, target.shown() + " is a handler: call it");
}

}  // namespace Kest::Agent
