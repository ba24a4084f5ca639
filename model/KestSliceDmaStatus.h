#pragma once

#include "model/SliceEntity.h"
#include "model/StatusRecords.h"
#include "model/detail/EntityNotifiee.h"
#include "platform/mox/MoxType.h"

namespace Hardware::Kest::Slice {

class KestSliceDmaStatus;

struct KEST_SLICE_DMA_API StatusTraits {  // small records, passed by value
  using Base = Mox::Entity;
  using SwitchPort = StatusSwitchPort;
  using SwitchPortArg = StatusSwitchPort;
  using Device = StatusDevice;
  using DeviceArg = StatusDevice;
  static constexpr Mox::AttributeId firstCollectionId = Mox::Entity::firstOwnAttributeId;
};

/// What has been done to a slice's DMA driver: written by the state machine alone. Collections from
/// attribute 258; see `SliceEntity`.
class KEST_SLICE_DMA_API KestSliceDmaStatus : public SliceEntity<KestSliceDmaStatus, StatusTraits> {
 public:
  static constexpr char const* typeName = "Hardware::Kest::Slice::KestSliceDmaStatus";

  class NotifieeConst;
  class Notifiee;

  class _Type;  // type object and generic access: registry/EntityTypes.h
  class GenericIf_;

  explicit KestSliceDmaStatus(Mox::Name name) noexcept;
  ~KestSliceDmaStatus() override;

  Mox::MoxType const* fwkType() const override;
  static Mox::MoxType const* _fwkType();
};

/// Observer of a status. It reacts by overriding handlers.
class KEST_SLICE_DMA_API KestSliceDmaStatus::NotifieeConst
    : public detail::SliceHandlers<detail::EntityNotifiee<KestSliceDmaStatus>> {
 public:
  ~NotifieeConst() override;
};

/// The variant for observers of a status that they may change.
class KEST_SLICE_DMA_API KestSliceDmaStatus::Notifiee : public NotifieeConst {
 public:
  ~Notifiee() override;
};

extern template class SliceEntity<KestSliceDmaStatus, StatusTraits>;

}  // namespace Hardware::Kest::Slice
