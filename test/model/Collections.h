#pragma once

#include <tuple>

#include "test/model/RecordNames.h"

/// The operations of each collection of either entity, under names that do not depend on which one
/// it is.
namespace Hardware::Kest::Slice {

/// Values are numbered: `value(key, n)`, with n from 0 to 3, 0 being the default but for the key.
inline constexpr unsigned values = 4;

inline ConfigSwitchPort portValue(Mox::String8 const& key, unsigned n, ConfigSwitchPort*) {
  ConfigSwitchPort port;
  port.ifNameIs(key);
  if (n == 0) return port;
  port.destIdIs(n);
  port.devNameIs("fap0");
  port.fapNumIs(n);
  port.hwLagIs(n == 2);
  port.macAddrIs(Pelk::EthAddr("00:1c:73:0a:0b:0c"));
  return port;
}

/// There are but two reports of a port, of an even and of an odd number.
inline StatusSwitchPort portValue(Mox::String8 const& key, unsigned n, StatusSwitchPort*) {
  StatusSwitchPort port;
  port.ifNameIs(key);
  port.createdIs(n % 2 == 1);
  return port;
}

inline ConfigDevice deviceValue(Mox::String8 const& key, unsigned n, ConfigDevice*) {
  ConfigDevice device;
  device.devNameIs(key);
  device.numFapsIs(1 + n);
  device.sflowPortIs(n);
  return device;
}

inline StatusDevice deviceValue(Mox::String8 const& key, unsigned n, StatusDevice*) {
  StatusDevice device;
  device.devNameIs(key);
  device.registeredIs(n % 2 == 1);
  return device;
}

template <class E>
struct SwitchPortOf {
  using Entity = E;
  using Value = typename E::SwitchPort;
  using Entry = typename E::MoxSwitchPort;
  using Iterator = typename E::SwitchPortIteratorConst;
  static constexpr unsigned index = 0;
  static constexpr char const* handler = "onSwitchPort";
  static Value value(Mox::String8 const& key, unsigned n) {
    return portValue(key, n, static_cast<Value*>(nullptr));
  }
  static Value lookup(E const& e, Mox::String8 const& key) { return e.switchPort(key); }
  static void is(E& e, Mox::String8 const&, Value const& v) { e.switchPortIs(v); }
  static Mox::Ptr<Entry> newEntry(E& e, Mox::String8 const&, Value const& v) {
    return e.newSwitchPort(v);
  }
  static Value del(E& e, Mox::String8 const& key) { return e.switchPortDel(key); }
  static Value del(E& e, Iterator const& it) { return e.switchPortDel(it); }
  static void delAll(E& e) { e.switchPortDelAll(); }
  static void notify(E& e, Mox::String8 const& key) { e.switchPortNotify(key); }
  static Iterator iterator(E const& e) { return e.switchPortIteratorConst(); }
  static Iterator iterator(E const& e, Mox::String8 const& key) {
    return e.switchPortIteratorConst(key);
  }
};

template <class E>
struct NativeVlanOf {
  using Entity = E;
  using Value = std::uint16_t;
  using Entry = typename E::MoxNativeVlan;
  using Iterator = typename E::NativeVlanIteratorConst;
  static constexpr unsigned index = 1;
  static constexpr char const* handler = "onNativeVlan";
  static Value value(Mox::String8 const&, unsigned n) { return static_cast<Value>(n * 0x5555); }
  static Value lookup(E const& e, Mox::String8 const& key) { return e.nativeVlan(key); }
  static void is(E& e, Mox::String8 const& key, Value v) { e.nativeVlanIs(key, v); }
  static Mox::Ptr<Entry> newEntry(E& e, Mox::String8 const& key, Value v) {
    return e.newNativeVlan(key, v);
  }
  static Value del(E& e, Mox::String8 const& key) { return e.nativeVlanDel(key); }
  static Value del(E& e, Iterator const& it) { return e.nativeVlanDel(it); }
  static void delAll(E& e) { e.nativeVlanDelAll(); }
  static void notify(E& e, Mox::String8 const& key) { e.nativeVlanNotify(key); }
  static Iterator iterator(E const& e) { return e.nativeVlanIteratorConst(); }
  static Iterator iterator(E const& e, Mox::String8 const& key) {
    return e.nativeVlanIteratorConst(key);
  }
};

template <class E>
struct SwitchportModeOf {
  using Entity = E;
  using Value = Bridging::SwitchportMode;
  using Entry = typename E::MoxSwitchportMode;
  using Iterator = typename E::SwitchportModeIteratorConst;
  static constexpr unsigned index = 2;
  static constexpr char const* handler = "onSwitchportMode";
  /// A mode without a name is stored as well.
  static Value value(Mox::String8 const&, unsigned n) { return static_cast<Value>(n); }
  static Value lookup(E const& e, Mox::String8 const& key) { return e.switchportMode(key); }
  static void is(E& e, Mox::String8 const& key, Value v) { e.switchportModeIs(key, v); }
  static Mox::Ptr<Entry> newEntry(E& e, Mox::String8 const& key, Value v) {
    return e.newSwitchportMode(key, v);
  }
  static Value del(E& e, Mox::String8 const& key) { return e.switchportModeDel(key); }
  static Value del(E& e, Iterator const& it) { return e.switchportModeDel(it); }
  static void delAll(E& e) { e.switchportModeDelAll(); }
  static void notify(E& e, Mox::String8 const& key) { e.switchportModeNotify(key); }
  static Iterator iterator(E const& e) { return e.switchportModeIteratorConst(); }
  static Iterator iterator(E const& e, Mox::String8 const& key) {
    return e.switchportModeIteratorConst(key);
  }
};

template <class E>
struct DeviceOf {
  using Entity = E;
  using Value = typename E::Device;
  using Entry = typename E::MoxDevice;
  using Iterator = typename E::DeviceIteratorConst;
  static constexpr unsigned index = 3;
  static constexpr char const* handler = "onDevice";
  static Value value(Mox::String8 const& key, unsigned n) {
    return deviceValue(key, n, static_cast<Value*>(nullptr));
  }
  static Value lookup(E const& e, Mox::String8 const& key) { return e.device(key); }
  static void is(E& e, Mox::String8 const&, Value const& v) { e.deviceIs(v); }
  static Mox::Ptr<Entry> newEntry(E& e, Mox::String8 const&, Value const& v) {
    return e.newDevice(v);
  }
  static Value del(E& e, Mox::String8 const& key) { return e.deviceDel(key); }
  static Value del(E& e, Iterator const& it) { return e.deviceDel(it); }
  static void delAll(E& e) { e.deviceDelAll(); }
  static void notify(E& e, Mox::String8 const& key) { e.deviceNotify(key); }
  static Iterator iterator(E const& e) { return e.deviceIteratorConst(); }
  static Iterator iterator(E const& e, Mox::String8 const& key) {
    return e.deviceIteratorConst(key);
  }
};

template <class E>
struct DeviceStateOf {
  using Entity = E;
  using Value = DeviceState;
  using Entry = typename E::MoxDeviceState;
  using Iterator = typename E::DeviceStateIteratorConst;
  static constexpr unsigned index = 4;
  static constexpr char const* handler = "onDeviceState";
  /// A state without a name is stored as well.
  static Value value(Mox::String8 const&, unsigned n) { return static_cast<Value>(n); }
  static Value lookup(E const& e, Mox::String8 const& key) { return e.deviceState(key); }
  static void is(E& e, Mox::String8 const& key, Value v) { e.deviceStateIs(key, v); }
  static Mox::Ptr<Entry> newEntry(E& e, Mox::String8 const& key, Value v) {
    return e.newDeviceState(key, v);
  }
  static Value del(E& e, Mox::String8 const& key) { return e.deviceStateDel(key); }
  static Value del(E& e, Iterator const& it) { return e.deviceStateDel(it); }
  static void delAll(E& e) { e.deviceStateDelAll(); }
  static void notify(E& e, Mox::String8 const& key) { e.deviceStateNotify(key); }
  static Iterator iterator(E const& e) { return e.deviceStateIteratorConst(); }
  static Iterator iterator(E const& e, Mox::String8 const& key) {
    return e.deviceStateIteratorConst(key);
  }
};

/// How many different values there are for one key.
template <class C>
inline constexpr unsigned distinct = values;
template <>
inline constexpr unsigned distinct<SwitchPortOf<KestSliceDmaStatus>> = 2;
template <>
inline constexpr unsigned distinct<DeviceOf<KestSliceDmaStatus>> = 2;

/// Calls `visit(collection)` for each collection of `E`, in order of attribute number.
template <class E, class Visit>
void forEachCollectionOf(Visit visit) {
  visit(SwitchPortOf<E>());
  visit(NativeVlanOf<E>());
  visit(SwitchportModeOf<E>());
  visit(DeviceOf<E>());
  visit(DeviceStateOf<E>());
}

/// Attribute number of an entity type's `switchPort`; the other collections follow.
template <class E>
inline constexpr Mox::AttributeId switchPortId = 0;
template <>
inline constexpr Mox::AttributeId switchPortId<KestSliceDmaConfig> = 259;
template <>
inline constexpr Mox::AttributeId switchPortId<KestSliceDmaStatus> = 258;

}  // namespace Hardware::Kest::Slice
