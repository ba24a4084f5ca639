#pragma once

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"
#include "platform/mox/Ptr.h"

namespace Hardware::Kest::Slice {

/// Observes every collection of an entity through one handler. Registered from its making on; held
/// through `Mox::Ptr`.
template <class Entity>
class CollectionObserver : public Entity::NotifieeConst {
 public:
  using Base = typename Entity::NotifieeConst;
  using Base::onDevice;
  using Base::onDeviceState;
  using Base::onNativeVlan;
  using Base::onSwitchPort;
  using Base::onSwitchportMode;

  void onSwitchPort(Mox::String8 key) final { changed(Entity::SwitchPorts::attributeId, key); }
  void onNativeVlan(Mox::String8 key) final { changed(Entity::NativeVlans::attributeId, key); }
  void onSwitchportMode(Mox::String8 key) final {
    changed(Entity::SwitchportModes::attributeId, key);
  }
  void onDevice(Mox::String8 key) final { changed(Entity::Devices::attributeId, key); }
  void onDeviceState(Mox::String8 key) final { changed(Entity::DeviceStates::attributeId, key); }

 protected:
  explicit CollectionObserver(Mox::Ptr<Entity const> const& entity) {
    Base::notifierIs(entity);
    Base::isRegisteredNotifieeIs(true);
  }

  /// The entry under `key` was added, changed, removed or announced again.
  virtual void changed(Mox::AttributeId collection, Mox::String8 const& key) = 0;
};

}  // namespace Hardware::Kest::Slice
