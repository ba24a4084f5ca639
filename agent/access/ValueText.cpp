#include "agent/access/ValueText.h"

#include <algorithm>
#include <cctype>

#include "platform/mox/Strep.h"

namespace Kest::Agent {

std::string shortEnumerator(std::string_view typeName, std::string_view enumerator) {
  bool const named = enumerator.size() > typeName.size() &&
                     std::equal(typeName.begin() + 1, typeName.end(), enumerator.begin() + 1) &&
                     std::tolower(static_cast<unsigned char>(typeName[0])) == enumerator[0];
  if (!named) return std::string(enumerator);
  std::string rest(enumerator.substr(typeName.size()));
  rest[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(rest[0])));
  return rest;
}

std::string nameText(Mox::String8 const& name) {
  Mox::String8 const quoted = Mox::valueToStrep(name);
  return std::string(quoted.view().substr(1, quoted.bytes() - 2));
}

std::string valueText(std::uint16_t vlan) {
  return std::to_string(vlan);
}

std::string valueText(Bridging::SwitchportMode mode) {
  return shortEnumerator("SwitchportMode", stringValue(mode).view());
}

std::string valueText(Hardware::Kest::Slice::DeviceState state) {
  return shortEnumerator("DeviceState", stringValue(state).view());
}

std::string valueText(Hardware::Kest::FapType type) {
  return shortEnumerator("FapType", stringValue(type).view());
}

}  // namespace Kest::Agent
