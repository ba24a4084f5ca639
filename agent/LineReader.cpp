#include "agent/LineReader.h"

#include <cctype>

namespace Kest::Agent {

namespace {

struct Expectation {
  std::string_view typeName;
  std::string_view text;
};
constexpr Expectation expectations[] = {
    {"DeviceState", "'deviceStateUp' or 'deviceStateDown'"},
    {"EthAddr", "a MAC address such as '00:1c:73:0a:0b:0c'"},
    {"FapType", "'fapTypeUnknown', 'fapTypeArad' or 'fapTypeAradDual'"},
    {"SwitchportMode",
     "'switchportModeAccess', 'switchportModeTrunk' or 'switchportModeDot1qTunnel'"},
};

}  // namespace

bool LineReader::isDone() {
  skipBlanks();
  return at_ == end_ || *at_ == '#';
}

std::string LineReader::keyword() {
  skipBlanks();
  std::string_view const rest = at_.viewTo(end_);
  std::size_t length = 0;
  while (length < rest.size() && std::isalpha(static_cast<unsigned char>(rest[length])) != 0) {
    ++length;
  }
  return std::string(rest.substr(0, length));
}

void LineReader::refuse(std::string_view expected) const {
  std::string_view const rest = at_.viewTo(end_);
  std::string text = "expected ";
  text.append(expected).append(", found '").append(rest.substr(0, rest.find_first_of(" \t")));
  Mox::throwRangeException(Mox::String8(text.append("'")));
}

std::string LineReader::explained(std::string_view refusal) const {
  // The type alone, or behind the name of a record's field: "NAME: TYPE".
  std::size_t const typeAt = refusal.find(' ') + 1;
  for (Expectation const& expectation : expectations) {
    if (refusal.substr(typeAt) != expectation.typeName) continue;
    Mox::String8::IteratorConst at = at_;
    Mox::String8 const found = Mox::sequenceToValue(at, end_, static_cast<Mox::String8*>(nullptr));
    std::string text(refusal.substr(0, typeAt));
    text.append("expected ").append(expectation.text);
    return text.append(", found ").append(Mox::valueToStrep(found).view());
  }
  return std::string(refusal);
}

}  // namespace Kest::Agent
