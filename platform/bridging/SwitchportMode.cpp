#include "platform/bridging/SwitchportMode.h"

#include "platform/detail/EnumText.h"
#include "platform/mox/GenericEnum.h"

namespace Bridging {

namespace {

constexpr char const* names[] = {"switchportModeAccess", "switchportModeTrunk",
                                 "switchportModeDot1qTunnel"};
constexpr Mox::detail::EnumText<SwitchportMode> text{"SwitchportMode", names, std::size(names)};

}  // namespace

Mox::String8 stringValue(SwitchportMode value) {
  return text.stringValue(value);
}

SwitchportMode SwitchportModeInstance(unsigned int number) {
  return text.instance(number);
}

SwitchportMode SwitchportModeInstance(Mox::String8 const& name) {
  return text.instance(name);
}

Mox::String8 valueToStrep(SwitchportMode const& value) {
  return Mox::valueToStrep(stringValue(value));
}

SwitchportMode sequenceToValue(Mox::String8::IteratorConst& it,
                               Mox::String8::IteratorConst const& end, SwitchportMode*) {
  return text.read(it, end);
}

std::ostream& operator<<(std::ostream& out, SwitchportMode const& value) {
  return out << stringValue(value);
}

}  // namespace Bridging

Mox::MoxType const* Mox::TypeOf<Bridging::SwitchportMode>::type() {
  static EnumType<Bridging::SwitchportMode> const enumeration("Bridging::SwitchportMode",
                                                              Bridging::text.enumerators());
  return &enumeration;
}
