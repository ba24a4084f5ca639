#pragma once

#include <functional>
#include <string>

#include "agent/SliceFile.h"

namespace Kest::Agent {

/// Observes a status and tells each change as a line for people, as in "switchPort et3/1: created".
/// Registered from its making until `notifierIs(nullptr)` or its end; held through `Mox::Ptr`.
class StatusWatcher : public Status::NotifieeConst {
 public:
  using Told = std::function<void(std::string const& line)>;

  StatusWatcher(Mox::Ptr<Status const> const& status, Told told);

  using Status::NotifieeConst::onDevice;
  using Status::NotifieeConst::onDeviceState;
  using Status::NotifieeConst::onNativeVlan;
  using Status::NotifieeConst::onSwitchPort;
  using Status::NotifieeConst::onSwitchportMode;

  void onSwitchPort(Mox::String8 ifName) override;
  void onNativeVlan(Mox::String8 ifName) override;
  void onSwitchportMode(Mox::String8 ifName) override;
  void onDevice(Mox::String8 devName) override;
  void onDeviceState(Mox::String8 devName) override;

 private:
  template <class Collection>
  void changed(Mox::String8 const& key);

  Told told_;
};

}  // namespace Kest::Agent
