#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "model/DeviceState.h"
#include "model/Export.h"
#include "model/detail/Collection.h"
#include "model/detail/ObserverList.h"
#include "model/detail/SliceCollections.h"
#include "platform/bridging/SwitchportMode.h"
#include "platform/mox/Entity.h"

namespace Hardware::Kest::Slice {

/// What the configuration and the status of a slice have in common: five keyed collections, counted
/// and announced changes, observers.
///
/// Lookups return a copy, a default value for an absent key. `Is` inserts or updates in place,
/// `new` is the bare insertion step, `Del` removes and returns the removed value, `DelAll` removes
/// entry by entry, `Notify` announces a key. A change counts once and is then announced with its
/// key; one that changes nothing does neither. No key is refused. Iteration is in no particular
/// order and survives any change of the collection:
///
///     for (auto it = config->switchPortIteratorConst(); it; ++it) use(it.key(), it->destId());
///
/// Whoever calls a mutator holds a reference to the entity. One thread uses it; observers may read
/// and write it while they are told.
///
/// Memory. An insertion that finds none throws `std::bad_alloc`, and nothing has been changed,
/// counted or announced. A handler that finds none fails like any other. An announcement that finds
/// none ends the process (see `ObserverList`).
///
/// `Entity` is the derived entity, which has the nested observer base `NotifieeConst`; `Traits`
/// names the two record types, how they are passed, the first collection's attribute number, and
/// the base, a `Mox::Entity` with the attributes that come before the collections.
template <class Entity, class Traits>
class KEST_SLICE_DMA_API SliceEntity : public Traits::Base {
 public:
  using SwitchPort = typename Traits::SwitchPort;
  using SwitchPortArg = typename Traits::SwitchPortArg;
  using Device = typename Traits::Device;
  using DeviceArg = typename Traits::DeviceArg;

  static constexpr Mox::AttributeId firstCollectionId = Traits::firstCollectionId;

  using SwitchPorts = detail::Collection<SliceEntity, detail::SwitchPortCollection, SwitchPort>;
  using NativeVlans = detail::Collection<SliceEntity, detail::NativeVlanCollection, std::uint16_t>;
  using SwitchportModes =
      detail::Collection<SliceEntity, detail::SwitchportModeCollection, Bridging::SwitchportMode>;
  using Devices = detail::Collection<SliceEntity, detail::DeviceCollection, Device>;
  using DeviceStates = detail::Collection<SliceEntity, detail::DeviceStateCollection, DeviceState>;

  // switchPort, keyed by ifName.
  using MoxSwitchPort = typename SwitchPorts::Entry;
  using SwitchPortIteratorConst = typename SwitchPorts::IteratorConst;
  SwitchPort switchPort(Mox::String8 const& ifName) const { return switchPort_.value(ifName); }
  void switchPortIs(SwitchPortArg value) { switchPort_.valueIs(SwitchPorts::keyOf(value), value); }
  Mox::Ptr<MoxSwitchPort> newSwitchPort(SwitchPortArg value) {
    return switchPort_.newEntry(SwitchPorts::keyOf(value), value);
  }
  SwitchPort switchPortDel(Mox::String8 ifName) { return switchPort_.del(ifName); }
  SwitchPort switchPortDel(SwitchPortIteratorConst const& it) { return switchPort_.del(it); }
  void switchPortDelAll() { switchPort_.delAll(); }
  void switchPortNotify(Mox::String8 ifName) { switchPort_.notify(ifName); }
  SwitchPortIteratorConst switchPortIteratorConst() const { return switchPort_.iteratorConst(); }
  SwitchPortIteratorConst switchPortIteratorConst(Mox::String8 const& ifName) const {
    return switchPort_.iteratorConst(ifName);
  }

  // nativeVlan, keyed by ifName.
  using MoxNativeVlan = typename NativeVlans::Entry;
  using NativeVlanIteratorConst = typename NativeVlans::IteratorConst;
  std::uint16_t nativeVlan(Mox::String8 const& ifName) const { return nativeVlan_.value(ifName); }
  void nativeVlanIs(Mox::String8 ifName, std::uint16_t value) {
    nativeVlan_.valueIs(ifName, value);
  }
  Mox::Ptr<MoxNativeVlan> newNativeVlan(Mox::String8 ifName, std::uint16_t value) {
    return nativeVlan_.newEntry(ifName, value);
  }
  std::uint16_t nativeVlanDel(Mox::String8 ifName) { return nativeVlan_.del(ifName); }
  std::uint16_t nativeVlanDel(NativeVlanIteratorConst const& it) { return nativeVlan_.del(it); }
  void nativeVlanDelAll() { nativeVlan_.delAll(); }
  void nativeVlanNotify(Mox::String8 ifName) { nativeVlan_.notify(ifName); }
  NativeVlanIteratorConst nativeVlanIteratorConst() const { return nativeVlan_.iteratorConst(); }
  NativeVlanIteratorConst nativeVlanIteratorConst(Mox::String8 const& ifName) const {
    return nativeVlan_.iteratorConst(ifName);
  }

  // switchportMode, keyed by ifName.
  using MoxSwitchportMode = typename SwitchportModes::Entry;
  using SwitchportModeIteratorConst = typename SwitchportModes::IteratorConst;
  Bridging::SwitchportMode switchportMode(Mox::String8 const& ifName) const {
    return switchportMode_.value(ifName);
  }
  void switchportModeIs(Mox::String8 ifName, Bridging::SwitchportMode value) {
    switchportMode_.valueIs(ifName, value);
  }
  Mox::Ptr<MoxSwitchportMode> newSwitchportMode(Mox::String8 ifName,
                                                Bridging::SwitchportMode value) {
    return switchportMode_.newEntry(ifName, value);
  }
  Bridging::SwitchportMode switchportModeDel(Mox::String8 ifName) {
    return switchportMode_.del(ifName);
  }
  Bridging::SwitchportMode switchportModeDel(SwitchportModeIteratorConst const& it) {
    return switchportMode_.del(it);
  }
  void switchportModeDelAll() { switchportMode_.delAll(); }
  void switchportModeNotify(Mox::String8 ifName) { switchportMode_.notify(ifName); }
  SwitchportModeIteratorConst switchportModeIteratorConst() const {
    return switchportMode_.iteratorConst();
  }
  SwitchportModeIteratorConst switchportModeIteratorConst(Mox::String8 const& ifName) const {
    return switchportMode_.iteratorConst(ifName);
  }

  // device, keyed by devName.
  using MoxDevice = typename Devices::Entry;
  using DeviceIteratorConst = typename Devices::IteratorConst;
  Device device(Mox::String8 const& devName) const { return device_.value(devName); }
  void deviceIs(DeviceArg value) { device_.valueIs(Devices::keyOf(value), value); }
  Mox::Ptr<MoxDevice> newDevice(DeviceArg value) {
    return device_.newEntry(Devices::keyOf(value), value);
  }
  Device deviceDel(Mox::String8 devName) { return device_.del(devName); }
  Device deviceDel(DeviceIteratorConst const& it) { return device_.del(it); }
  void deviceDelAll() { device_.delAll(); }
  void deviceNotify(Mox::String8 devName) { device_.notify(devName); }
  DeviceIteratorConst deviceIteratorConst() const { return device_.iteratorConst(); }
  DeviceIteratorConst deviceIteratorConst(Mox::String8 const& devName) const {
    return device_.iteratorConst(devName);
  }

  // deviceState, keyed by devName.
  using MoxDeviceState = typename DeviceStates::Entry;
  using DeviceStateIteratorConst = typename DeviceStates::IteratorConst;
  DeviceState deviceState(Mox::String8 const& devName) const { return deviceState_.value(devName); }
  void deviceStateIs(Mox::String8 devName, DeviceState value) {
    deviceState_.valueIs(devName, value);
  }
  Mox::Ptr<MoxDeviceState> newDeviceState(Mox::String8 devName, DeviceState value) {
    return deviceState_.newEntry(devName, value);
  }
  DeviceState deviceStateDel(Mox::String8 devName) { return deviceState_.del(devName); }
  DeviceState deviceStateDel(DeviceStateIteratorConst const& it) { return deviceState_.del(it); }
  void deviceStateDelAll() { deviceState_.delAll(); }
  void deviceStateNotify(Mox::String8 devName) { deviceState_.notify(devName); }
  DeviceStateIteratorConst deviceStateIteratorConst() const { return deviceState_.iteratorConst(); }
  DeviceStateIteratorConst deviceStateIteratorConst(Mox::String8 const& devName) const {
    return deviceState_.iteratorConst(devName);
  }

  /// Calls `visit(collection)` for each collection, in order of attribute number.
  template <class Visit>
  void forEachCollection(Visit visit) {
    collectionsOf(*this, visit);
  }
  template <class Visit>
  void forEachCollection(Visit visit) const {
    collectionsOf(*this, visit);
  }

  /// Calls `visit(std::type_identity<Collection>())` for each collection's type, in the same order.
  template <class Visit>
  static constexpr void forEachCollectionType(Visit visit) {
    visit(std::type_identity<SwitchPorts>());
    visit(std::type_identity<NativeVlans>());
    visit(std::type_identity<SwitchportModes>());
    visit(std::type_identity<Devices>());
    visit(std::type_identity<DeviceStates>());
  }

  /// Name of the attribute of that number; empty when the entity has none.
  Mox::String8 attributeString(Mox::AttributeId id) const override {
    char const* name = nullptr;
    forEachCollectionType([&]<class Collection>(std::type_identity<Collection>) {
      if (Collection::attributeId == id) name = Collection::name;
    });
    return name == nullptr ? Mox::Entity::attributeString(id) : name;
  }

  /// The observers registered now. An observer joins and leaves by itself.
  detail::ObserverList& observers() const noexcept { return observers_; }

  /// Called by the framework when only observers still hold the entity.
  void zeroReferencesIs(bool zero) override {
    if (!zero) return;
    deliver(Mox::Entity::zeroReferencesAttributeId,
            [](auto& observer) { observer.onZeroReferences(); });
  }

 protected:
  explicit SliceEntity(Mox::Name name) noexcept : Traits::Base(std::move(name)) {}
  /// Lets go of the observers that are still listed, then of the content, the last collection
  /// first. Nobody is told.
  ~SliceEntity() override { observers_.clear(); }

  /// Tells each observer of a change of `attribute`; see `ObserverList`.
  template <class Tell>
  void deliver(Mox::AttributeId attribute, Tell const& tell) const {
    observers_.tell(attribute, [&](detail::ListedNotifiee& observer) {
      tell(static_cast<typename Entity::NotifieeConst&>(observer));
    });
  }

 private:
  template <class, class, class>
  friend class detail::Collection;

  template <class Self, class Visit>
  static void collectionsOf(Self& self, Visit& visit) {
    visit(self.switchPort_);
    visit(self.nativeVlan_);
    visit(self.switchportMode_);
    visit(self.device_);
    visit(self.deviceState_);
  }

  SwitchPorts switchPort_{*this};
  NativeVlans nativeVlan_{*this};
  SwitchportModes switchportMode_{*this};
  Devices device_{*this};
  DeviceStates deviceState_{*this};
  detail::ObserverList mutable observers_;
};

}  // namespace Hardware::Kest::Slice
