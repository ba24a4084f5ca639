#pragma once

#include "model/ConfigRecords.h"
#include "model/SliceEntity.h"
#include "model/detail/EntityNotifiee.h"
#include "platform/mox/MoxType.h"

namespace Hardware::Kest::Slice {

class KestSliceDmaConfig;

namespace detail {

/// What the configuration has before its collections: the slice's identity.
class SliceIdEntity : public Mox::Entity {
 public:
  using Mox::Entity::Entity;
  /// Empty until it is set.
  Mox::String8 const& sliceId() const noexcept { return sliceId_; }

 protected:
  Mox::String8 sliceId_;
};

class SliceIdNotifiee : public EntityNotifiee<KestSliceDmaConfig> {
 public:
  virtual void onSliceId() {}
};

}  // namespace detail

struct KEST_SLICE_DMA_API ConfigTraits {
  using Base = detail::SliceIdEntity;
  using SwitchPort = ConfigSwitchPort;
  using SwitchPortArg = ConfigSwitchPort const&;
  using Device = ConfigDevice;
  using DeviceArg = ConfigDevice const&;
  static constexpr Mox::AttributeId firstCollectionId = Mox::Entity::firstOwnAttributeId + 1;
};

/// What a slice's DMA driver is to hold: written by the agents that own the slice, read and
/// observed by the state machine. Attributes `sliceId` 258, then the collections from 259; see
/// `SliceEntity`.
class KEST_SLICE_DMA_API KestSliceDmaConfig : public SliceEntity<KestSliceDmaConfig, ConfigTraits> {
 public:
  static constexpr char const* typeName = "Hardware::Kest::Slice::KestSliceDmaConfig";

  class NotifieeConst;
  class Notifiee;

  class _Type;  // type object and generic access: registry/EntityTypes.h
  class GenericIf_;

  static constexpr Mox::AttributeId sliceIdAttributeId = firstOwnAttributeId;
  static constexpr char const* sliceIdName = "sliceId";

  explicit KestSliceDmaConfig(Mox::Name name) noexcept;
  ~KestSliceDmaConfig() override;

  Mox::MoxType const* fwkType() const override;
  Mox::String8 attributeString(Mox::AttributeId id) const override;
  static Mox::MoxType const* _fwkType();

  /// Counts and announces a change; silent when the value is the current one.
  void sliceIdIs(Mox::String8 sliceId);
};

/// Observer of a configuration. It reacts by overriding handlers.
class KEST_SLICE_DMA_API KestSliceDmaConfig::NotifieeConst
    : public detail::SliceHandlers<detail::SliceIdNotifiee> {
 public:
  ~NotifieeConst() override;
};

/// The variant for observers of a configuration that they may change.
class KEST_SLICE_DMA_API KestSliceDmaConfig::Notifiee : public NotifieeConst {
 public:
  ~Notifiee() override;
};

extern template class SliceEntity<KestSliceDmaConfig, ConfigTraits>;

}  // namespace Hardware::Kest::Slice
