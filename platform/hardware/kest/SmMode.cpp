#include "platform/hardware/kest/SmMode.h"

#include "platform/detail/EnumText.h"
#include "platform/mox/GenericEnum.h"

namespace Hardware::Kest {

namespace {

constexpr Mox::detail::EnumText<SmMode, 3> smModeText{
    "SmMode", {"smModeInitial", "smModeStandby", "smModePolling"}};

}  // namespace

Mox::String8 stringValue(SmMode value) {
  return smModeText.stringValue(value);
}

Mox::String8 valueToStrep(SmMode const& value) {
  return Mox::valueToStrep(stringValue(value));
}

SmMode sequenceToValue(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end,
                       SmMode*) {
  return smModeText.read(it, end);
}

std::ostream& operator<<(std::ostream& out, SmMode const& value) {
  return out << stringValue(value);
}

}  // namespace Hardware::Kest

Mox::MoxType const* Mox::TypeOf<Hardware::Kest::SmMode>::type() {
  static EnumType<Hardware::Kest::SmMode> const enumeration(
      "Hardware::Kest::SmMode", Hardware::Kest::smModeText.enumerators());
  return &enumeration;
}
