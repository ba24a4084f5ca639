#include "registry/DeviceStateType.h"

namespace Hardware::Kest::Slice {

std::unique_ptr<Mox::GenericIf> DeviceStateGenericIf_::genericIfListConstructor(
    Mox::GenericIf const& list) const {
  auto const& items = List_::of(list).items();
  if (items.size() > 1) throwUnknownArgException("DeviceState");
  DeviceState state{};
  if (!items.empty()) {
    auto const* const number = Mox::genericVal<std::uint32_t>(items.front().get());
    if (number == nullptr) throwTypeException("value");
    state = DeviceStateInstance(*number);
  }
  return Mox::genericOf(state, false);
}

DeviceState_Type::DeviceState_Type() noexcept
    : ValueType("Hardware::Kest::Slice::DeviceState", Kind::enumeration) {}

std::vector<Mox::String8> DeviceState_Type::enumerators() const {
  std::vector<Mox::String8> all;
  for (DeviceState const state : deviceStates) all.push_back(stringValue(state));
  return all;
}

Mox::MoxType const* DeviceState_fwkType() {
  static DeviceState_Type const type;
  return &type;
}

}  // namespace Hardware::Kest::Slice
