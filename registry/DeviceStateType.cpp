#include "registry/DeviceStateType.h"

#include "registry/detail/Held.h"

namespace Hardware::Kest::Slice {

std::unique_ptr<Mox::GenericIf> DeviceStateGenericIf_::genericIfListConstructor(
    Mox::GenericIf const& list) const {
  auto const& items = detail::listOf(list).items();
  if (items.size() > 1) throwUnknownArgException("DeviceState");
  DeviceState state{};
  if (!items.empty()) {
    state = DeviceStateInstance(detail::held<std::uint32_t>(items.front().get(), "value"));
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

}  // namespace Hardware::Kest::Slice
