#include "agent/rules/ChangeRules.h"

#include "agent/access/Collections.h"
#include "agent/rules/SliceRules.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/RangeException.h"
#include "registry/DeviceStateType.h"

namespace Kest::Agent {

namespace {

using Hardware::Kest::Slice::DeviceState;

bool isStates(Mox::Attribute const& attribute) {
  return attribute.type == Mox::TypeOf<DeviceState>::type();
}

/// When the state of a registered device is announced, the device is brought to it: there must be a
/// configured state.
void checkState(Mox::String8 const& devName, Config const& config, Status const& status) {
  DeviceState const wanted = config.deviceState(devName);
  bool const isWanted =
      wanted == DeviceState::deviceStateUp_ || wanted == DeviceState::deviceStateDown_;
  if (isWanted || !status.device(devName).registered()) return;
  Mox::throwRangeException(Mox::format("expected a configured state of the registered device %s",
                                       Mox::valueToStrep(devName).charPtr()));
}

/// A registered device must keep its state. If the device is no longer configured, the state
/// machine has not been told, because it was not observing: then a handler must tell it.
void checkStateRemoval(Mox::String8 const& devName, Config const& config, Status const& status) {
  if (!status.device(devName).registered()) return;
  bool const isConfigured = static_cast<bool>(config.deviceIteratorConst(devName));
  Mox::throwRangeException(Mox::format("device %s is registered: %s before its state goes",
                                       Mox::valueToStrep(devName).charPtr(),
                                       isConfigured ? "remove it" : "call handleDevice"));
}

}  // namespace

void checkStore(Target const& entry, Mox::GenericIf const& value) {
  checkKey(entry.attribute->keyName.view(), *entry.key);
  checkValue(value);
}

void checkRemove(Target const& entry, Config const& config, Status const& status) {
  if (isStates(*entry.attribute)) checkStateRemoval(*entry.key, config, status);
}

void checkHasState(Mox::String8 const& devName, Config const& slice) {
  if (slice.deviceStateIteratorConst(devName)) return;
  Mox::throwRangeException(
      Mox::format("expected a %s for this device, found none", Config::DeviceStates::name));
}

/// Applying a slice removes devices before their states. But a device that is registered and no
/// longer configured would stay without a state.
void checkApply(Config const& wanted, Config const& config, Status const& status) {
  for (Mox::String8 const& devName : keysOf<Config::DeviceStates>(config)) {
    bool const stays = static_cast<bool>(wanted.deviceStateIteratorConst(devName));
    bool const isConfigured = static_cast<bool>(config.deviceIteratorConst(devName));
    if (!stays && !isConfigured) checkStateRemoval(devName, config, status);
  }
}

void checkNotify(Target const& entry, Config const& config, Status const& status) {
  checkKey(entry.attribute->keyName.view(), *entry.key);
  if (isStates(*entry.attribute)) checkState(*entry.key, config, status);
}

void checkCall(Mox::Attribute const& handler, Mox::String8 const& key, Config const& config,
               Status const& status) {
  bool const isOfPort = handler.name == "handleSwitchPort" || handler.name == "handleNativeVlan";
  if (isOfPort) checkKey(Config::SwitchPorts::keyName, key);
  if (handler.name == "handleDeviceState") checkState(key, config, status);
}

}  // namespace Kest::Agent
