#include "platform/bridging/SwitchportMode.h"

#include "platform/detail/EnumText.h"
#include "platform/mox/GenericEnum.h"

namespace Bridging {

namespace {

constexpr Mox::detail::EnumText<SwitchportMode, 3> switchportModeText{
    "SwitchportMode", {"switchportModeAccess", "switchportModeTrunk", "switchportModeDot1qTunnel"}};

}  // namespace

Mox::String8 stringValue(SwitchportMode value) {
  return switchportModeText.stringValue(value);
}

Mox::String8 valueToStrep(SwitchportMode const& value) {
  return Mox::valueToStrep(stringValue(value));
}

SwitchportMode sequenceToValue(Mox::String8::IteratorConst& it,
                               Mox::String8::IteratorConst const& end, SwitchportMode*) {
  return switchportModeText.read(it, end);
}

std::ostream& operator<<(std::ostream& out, SwitchportMode const& value) {
  return out << stringValue(value);
}

}  // namespace Bridging

Mox::MoxType const* Mox::TypeOf<Bridging::SwitchportMode>::type() {
  static EnumType<Bridging::SwitchportMode> const enumeration(
      "Bridging::SwitchportMode", Bridging::switchportModeText.enumerators());
  return &enumeration;
}
