#include "platform/hardware/kest/FapType.h"

#include "platform/detail/EnumText.h"
#include "platform/mox/GenericEnum.h"

namespace Hardware::Kest {

namespace {

constexpr char const* names[] = {"fapTypeUnknown", "fapTypeArad", "fapTypeAradDual"};
constexpr Mox::detail::EnumText<FapType> text{"FapType", names, std::size(names)};

}  // namespace

Mox::String8 stringValue(FapType value) {
  return text.stringValue(value);
}

FapType FapTypeInstance(unsigned int number) {
  return text.instance(number);
}

FapType FapTypeInstance(Mox::String8 const& name) {
  return text.instance(name);
}

Mox::String8 valueToStrep(FapType const& value) {
  return Mox::valueToStrep(stringValue(value));
}

FapType sequenceToValue(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end,
                        FapType*) {
  return text.read(it, end);
}

std::ostream& operator<<(std::ostream& out, FapType const& value) {
  return out << stringValue(value);
}

}  // namespace Hardware::Kest

Mox::MoxType const* Mox::TypeOf<Hardware::Kest::FapType>::type() {
  static EnumType<Hardware::Kest::FapType> const enumeration("Hardware::Kest::FapType",
                                                             Hardware::Kest::text.enumerators());
  return &enumeration;
}
