#pragma once

#include "platform/mox/Entity.h"
#include "platform/mox/String8.h"

/// The five keyed collections that the configuration and the status of a slice both have, each
/// described once, in order of attribute number.
namespace Hardware::Kest::Slice::detail {

/// What an observer of a slice entity can be told: for each collection the keyed handler, which the
/// entity calls with the key that changed, then the immediate and the whole-collection ones, which
/// belong to the framework's deferred notification. Handlers do nothing unless overridden.
///
/// The order of these virtual operations is part of the binary interface.
template <class Base>
class SliceHandlers : public Base {
 public:
  virtual void onSwitchPort(Mox::String8 /*ifName*/) {}
  virtual void onSwitchPortmoxImmediate() {}
  virtual void onSwitchPort() {}

  virtual void onNativeVlan(Mox::String8 /*ifName*/) {}
  virtual void onNativeVlanmoxImmediate() {}
  virtual void onNativeVlan() {}

  virtual void onSwitchportMode(Mox::String8 /*ifName*/) {}
  virtual void onSwitchportModemoxImmediate() {}
  virtual void onSwitchportMode() {}

  virtual void onDevice(Mox::String8 /*devName*/) {}
  virtual void onDevicemoxImmediate() {}
  virtual void onDevice() {}

  virtual void onDeviceState(Mox::String8 /*devName*/) {}
  virtual void onDeviceStatemoxImmediate() {}
  virtual void onDeviceState() {}
};

struct SwitchPortCollection {
  static constexpr char const* name = "switchPort";
  static constexpr char const* keyName = "ifName";
  static constexpr Mox::AttributeId index = 0;
  static Mox::String8 const& keyOf(auto const& record) { return record.ifName(); }
  static void tell(auto& observer, Mox::String8 const& key) { observer.onSwitchPort(key); }
  static void tellImmediate(auto& observer) { observer.onSwitchPortmoxImmediate(); }
  static void tellWhole(auto& observer) { observer.onSwitchPort(); }
};

struct NativeVlanCollection {
  static constexpr char const* name = "nativeVlan";
  static constexpr char const* keyName = "ifName";
  static constexpr Mox::AttributeId index = 1;
  static void tell(auto& observer, Mox::String8 const& key) { observer.onNativeVlan(key); }
  static void tellImmediate(auto& observer) { observer.onNativeVlanmoxImmediate(); }
  static void tellWhole(auto& observer) { observer.onNativeVlan(); }
};

struct SwitchportModeCollection {
  static constexpr char const* name = "switchportMode";
  static constexpr char const* keyName = "ifName";
  static constexpr Mox::AttributeId index = 2;
  static void tell(auto& observer, Mox::String8 const& key) { observer.onSwitchportMode(key); }
  static void tellImmediate(auto& observer) { observer.onSwitchportModemoxImmediate(); }
  static void tellWhole(auto& observer) { observer.onSwitchportMode(); }
};

struct DeviceCollection {
  static constexpr char const* name = "device";
  static constexpr char const* keyName = "devName";
  static constexpr Mox::AttributeId index = 3;
  static Mox::String8 const& keyOf(auto const& record) { return record.devName(); }
  static void tell(auto& observer, Mox::String8 const& key) { observer.onDevice(key); }
  static void tellImmediate(auto& observer) { observer.onDevicemoxImmediate(); }
  static void tellWhole(auto& observer) { observer.onDevice(); }
};

struct DeviceStateCollection {
  static constexpr char const* name = "deviceState";
  static constexpr char const* keyName = "devName";
  static constexpr Mox::AttributeId index = 4;
  static void tell(auto& observer, Mox::String8 const& key) { observer.onDeviceState(key); }
  static void tellImmediate(auto& observer) { observer.onDeviceStatemoxImmediate(); }
  static void tellWhole(auto& observer) { observer.onDeviceState(); }
};

}  // namespace Hardware::Kest::Slice::detail
