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
    : EnumType("Hardware::Kest::Slice::DeviceState", {stringValue(DeviceState::deviceStateUnknown_),
                                                      stringValue(DeviceState::deviceStateUp_),
                                                      stringValue(DeviceState::deviceStateDown_)}) {
}

}  // namespace Hardware::Kest::Slice
