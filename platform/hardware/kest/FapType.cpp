#include "platform/hardware/kest/FapType.h"

#include "platform/detail/EnumText.h"
#include "platform/mox/GenericEnum.h"

namespace Hardware::Kest {

namespace {

constexpr Mox::detail::EnumText<FapType, 3> fapTypeText{
    "FapType", {"fapTypeUnknown", "fapTypeArad", "fapTypeAradDual"}};

}  // namespace

Mox::String8 stringValue(FapType value) {
  return fapTypeText.stringValue(value);
}

Mox::String8 valueToStrep(FapType const& value) {
  return Mox::valueToStrep(stringValue(value));
}

FapType sequenceToValue(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end,
                        FapType*) {
  return fapTypeText.read(it, end);
}

std::ostream& operator<<(std::ostream& out, FapType const& value) {
  return out << stringValue(value);
}

}  // namespace Hardware::Kest

Mox::MoxType const* Mox::TypeOf<Hardware::Kest::FapType>::type() {
  static EnumType<Hardware::Kest::FapType> const enumeration(
      "Hardware::Kest::FapType", Hardware::Kest::fapTypeText.enumerators());
  return &enumeration;
}
