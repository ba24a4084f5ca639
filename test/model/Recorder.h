#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "test/model/AnyNotifiee.h"

namespace Hardware::Kest::Slice {

/// What observers were told, in order: "NAME HANDLER KEY".
using Events = std::vector<std::string>;

/// Observer that writes down what it is told in a list that it shares with others, and may then do
/// something.
template <class Entity>
class Recorder : public AnyNotifiee<Entity> {
 public:
  /// What to do when told, after it was written down.
  std::function<void()> reaction;
  /// What to do when an exception of the reaction is reported.
  std::function<void()> exceptionReaction;

  Recorder(std::string name, Events& events) : name_(std::move(name)), events_(events) {}

  void onNotificationException(Mox::AttributeId id) override {
    events_.push_back(name_ + " onNotificationException " + std::to_string(id));
    run(exceptionReaction);
  }
  void onZeroReferences() override { told("onZeroReferences"); }
  void onParent() override { told("onParent"); }
  void onVersion() override { told("onVersion"); }
  void onSliceId() override { told("onSliceId"); }
  void onSwitchPort(Mox::String8 key) override { told("onSwitchPort", key); }
  void onSwitchPortmoxImmediate() override { told("onSwitchPortmoxImmediate"); }
  void onSwitchPort() override { told("onSwitchPort()"); }
  void onNativeVlan(Mox::String8 key) override { told("onNativeVlan", key); }
  void onNativeVlanmoxImmediate() override { told("onNativeVlanmoxImmediate"); }
  void onNativeVlan() override { told("onNativeVlan()"); }
  void onSwitchportMode(Mox::String8 key) override { told("onSwitchportMode", key); }
  void onSwitchportModemoxImmediate() override { told("onSwitchportModemoxImmediate"); }
  void onSwitchportMode() override { told("onSwitchportMode()"); }
  void onDevice(Mox::String8 key) override { told("onDevice", key); }
  void onDevicemoxImmediate() override { told("onDevicemoxImmediate"); }
  void onDevice() override { told("onDevice()"); }
  void onDeviceState(Mox::String8 key) override { told("onDeviceState", key); }
  void onDeviceStatemoxImmediate() override { told("onDeviceStatemoxImmediate"); }
  void onDeviceState() override { told("onDeviceState()"); }

 private:
  /// A copy runs, so that a reaction may replace itself.
  static void run(std::function<void()> const work) {
    if (work) work();
  }
  void told(char const* handler) {
    events_.push_back(name_ + " " + handler);
    run(reaction);
  }
  void told(std::string const& handler, Mox::String8 const& key) {
    told((handler + " " + key.charPtr()).c_str());
  }

  std::string name_;
  Events& events_;
};

/// A registered recorder of `entity`.
template <class Entity>
Mox::Ptr<Recorder<Entity>> observe(Mox::Ptr<Entity> const& entity, std::string name,
                                   Events& events) {
  Mox::Ptr<Recorder<Entity>> recorder(new Recorder<Entity>(std::move(name), events));
  recorder->notifierIs(entity);
  recorder->isRegisteredNotifieeIs(true);
  return recorder;
}

}  // namespace Hardware::Kest::Slice
