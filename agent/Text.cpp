#include "agent/Text.h"

#include <cctype>
#include <string_view>

#include "platform/mox/Strep.h"

namespace Kest::Agent {

namespace {

std::string without(std::string_view typeName, Mox::String8 const& enumerator) {
  std::string_view name = enumerator.view();
  bool const isLonger = name.size() > typeName.size();
  if (!isLonger || !name.starts_with(typeName)) return std::string(name);
  std::string rest(name.substr(typeName.size()));
  rest[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(rest[0])));
  return rest;
}

}  // namespace

std::string nameText(Mox::String8 const& name) {
  Mox::String8 const quoted = Mox::valueToStrep(name);
  return std::string(quoted.view().substr(1, quoted.bytes() - 2));
}

std::string valueText(std::uint16_t vlan) {
  return std::to_string(vlan);
}

std::string valueText(Bridging::SwitchportMode mode) {
  return without("switchportMode", stringValue(mode));
}

std::string valueText(Hardware::Kest::Slice::DeviceState state) {
  return without("deviceState", stringValue(state));
}

std::string valueText(Hardware::Kest::FapType type) {
  return without("fapType", stringValue(type));
}

}  // namespace Kest::Agent
