#include "platform/hardware/kest/SmMode.h"

#include "platform/detail/EnumText.h"
#include "platform/mox/GenericEnum.h"

namespace Hardware::Kest {

namespace {

constexpr char const* modeNames[] = {"smModeInitial", "smModeStandby", "smModePolling"};
constexpr Mox::detail::EnumText<SmMode> modeText{"SmMode", modeNames, std::size(modeNames)};

}  // namespace

Mox::String8 stringValue(SmMode value) {
  return modeText.stringValue(value);
}

SmMode SmModeInstance(unsigned int number) {
  return modeText.instance(number);
}

SmMode SmModeInstance(Mox::String8 const& name) {
  return modeText.instance(name);
}

Mox::String8 valueToStrep(SmMode const& value) {
  return Mox::valueToStrep(stringValue(value));
}

SmMode sequenceToValue(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end,
                       SmMode*) {
  return modeText.read(it, end);
}

std::ostream& operator<<(std::ostream& out, SmMode const& value) {
  return out << stringValue(value);
}

}  // namespace Hardware::Kest

Mox::MoxType const* Mox::TypeOf<Hardware::Kest::SmMode>::type() {
  static EnumType<Hardware::Kest::SmMode> const enumeration("Hardware::Kest::SmMode",
                                                            Hardware::Kest::modeText.enumerators());
  return &enumeration;
}
