#pragma once

#include "model/DeviceState.h"
#include "model/Export.h"
#include "platform/mox/GenericEnum.h"
#include "registry/detail/ValueAdapter.h"

/// Type object and adapter of `DeviceState`. As an enumeration cannot nest them as the records do,
/// they stand beside it, under its name.
namespace Hardware::Kest::Slice {

class KEST_SLICE_DMA_API DeviceStateGenericIf_ final
    : public detail::ValueAdapter<DeviceState, Mox::GenericEnum<DeviceState>> {
 public:
  using ValueAdapter::ValueAdapter;
  /// From a list of the state's number, or of nothing.
  std::unique_ptr<Mox::GenericIf> genericIfListConstructor(
      Mox::GenericIf const& list) const override;
};

class KEST_SLICE_DMA_API DeviceState_Type final
    : public Mox::EnumType<DeviceState, DeviceStateGenericIf_> {
 public:
  DeviceState_Type() noexcept;
};

KEST_SLICE_DMA_API Mox::MoxType const* DeviceState_fwkType();

}  // namespace Hardware::Kest::Slice

template <>
struct Mox::TypeOf<Hardware::Kest::Slice::DeviceState> {
  static MoxType const* type() { return Hardware::Kest::Slice::DeviceState_fwkType(); }
};
