#include "platform/hardware/kest/FapType.h"

#include "platform/detail/EnumText.h"
#include "platform/mox/GenericEnum.h"

namespace Hardware::Kest {

namespace {

constexpr char const* typeNames[] = {"fapTypeUnknown", "fapTypeArad", "fapTypeAradDual"};
constexpr Mox::detail::EnumText<FapType> typeText{"FapType", typeNames, std::size(typeNames)};

}  // namespace

Mox::String8 stringValue(FapType value) {
  return typeText.stringValue(value);
}

FapType FapTypeInstance(unsigned int number) {
  return typeText.instance(number);
}

FapType FapTypeInstance(Mox::String8 const& name) {
  return typeText.instance(name);
}

Mox::String8 valueToStrep(FapType const& value) {
  return Mox::valueToStrep(stringValue(value));
}

FapType sequenceToValue(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end,
                        FapType*) {
  return typeText.read(it, end);
}

std::ostream& operator<<(std::ostream& out, FapType const& value) {
  return out << stringValue(value);
}

}  // namespace Hardware::Kest

Mox::MoxType const* Mox::TypeOf<Hardware::Kest::FapType>::type() {
  static EnumType<Hardware::Kest::FapType> const enumeration(
      "Hardware::Kest::FapType", Hardware::Kest::typeText.enumerators());
  return &enumeration;
}
