#include "agent/StatusWatcher.h"

#include <utility>

#include "agent/Collections.h"
#include "agent/Text.h"

namespace Kest::Agent {

namespace {

std::string valueText(Status::SwitchPort const& port) {
  return port.created() ? "created" : "not created";
}
std::string valueText(Status::Device const& device) {
  return device.registered() ? "registered" : "refused by the driver";
}

}  // namespace

StatusWatcher::StatusWatcher(Mox::Ptr<Status const> const& status, Told told)
    : told_(std::move(told)) {
  Status::NotifieeConst::notifierIs(status);
  Status::NotifieeConst::isRegisteredNotifieeIs(true);
}

template <class Collection>
void StatusWatcher::changed(Mox::String8 const& key) {
  Mox::Ptr<Status const> const status = notifier();
  auto const entry = collectionOf<Collection>(*status).iteratorConst(key);
  std::string const now = entry ? valueText(entry.value()) : "removed";
  told_(std::string(Collection::name) + " " + nameText(key) + ": " + now);
}

void StatusWatcher::onSwitchPort(Mox::String8 ifName) {
  changed<Status::SwitchPorts>(ifName);
}

void StatusWatcher::onNativeVlan(Mox::String8 ifName) {
  changed<Status::NativeVlans>(ifName);
}

void StatusWatcher::onSwitchportMode(Mox::String8 ifName) {
  changed<Status::SwitchportModes>(ifName);
}

void StatusWatcher::onDevice(Mox::String8 devName) {
  changed<Status::Devices>(devName);
}

void StatusWatcher::onDeviceState(Mox::String8 devName) {
  changed<Status::DeviceStates>(devName);
}

}  // namespace Kest::Agent
