#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/mox/Activity.h"
#include "registry/CollectionObserver.h"
#include "sm/KestSliceDmaSm.h"
#include "test/exhaustion/Content.h"
#include "test/model/Collections.h"

namespace Hardware::Kest::Slice {

/// Writes down what a scene looks like after each change of the status. It takes memory: for
/// undisturbed runs only.
class StateRecorder final : public CollectionObserver<KestSliceDmaStatus> {
 public:
  StateRecorder(Mox::Ptr<KestSliceDmaStatus> const& status, std::function<void()> record)
      : CollectionObserver(status), record_(std::move(record)) {}

 protected:
  void changed(Mox::AttributeId, Mox::String8 const&) override { record_(); }

 private:
  std::function<void()> record_;
};

/// A machine between its entities, on a clock of its own, with a port and a device that are up.
/// Both have the same name, so that every handler can be called with it.
struct MachineScene {
  MachineScene() {
    Mox::activityManager()->clockIs(clock);
    sm = kestSliceDmaSmFactory(config, status);
    config->deviceIs(deviceValue(key, 1, static_cast<ConfigDevice*>(nullptr)));
    config->deviceStateIs(key, DeviceState::deviceStateUp_);
    config->switchPortIs(portValue(key, 1, static_cast<ConfigSwitchPort*>(nullptr)));
    config->nativeVlanIs(key, 10);
    config->switchportModeIs(key, Bridging::SwitchportMode::switchportModeTrunk_);
  }

  /// What the machine has made, and what it is bound to.
  std::string state() const {
    return contentOf(*status) + "mode " + std::to_string(static_cast<int>(sm->mode())) +
           (sm->config() ? " config" : "") + timerState() +
           (sm->hasNotificationActive() ? " active" : "") +
           (sm->moxMarkedForDeletion() ? " zombie" : "");
  }

  /// The clock that the timer is bound to, and whether that will wake it.
  std::string timerState() const {
    Mox::Ptr<Mox::Clock const> const bound = sm->stateTimer();
    if (!bound) return "";
    return std::string(" timer on ").append(bound->fullName().view()) +
           (bound->timeMin() == Mox::never ? "" : ", set");
  }

  Mox::String8 key{"Ethernet et3/1, a name that takes memory"};
  Mox::Ptr<Mox::Clock> clock{new Mox::Clock("clock")};
  Mox::Ptr<KestSliceDmaConfig> config{new KestSliceDmaConfig("config")};
  Mox::Ptr<KestSliceDmaStatus> status{new KestSliceDmaStatus("status")};
  Mox::Ptr<KestSliceDmaSm> sm;
};

/// What `act` makes of a scene that `make()` makes, undisturbed: its state at the beginning, after
/// every change of the status, and at the end.
template <class Make, class Act>
std::vector<std::string> statesOf(Make const& make, Act const& act) {
  MachineScene scene = make();
  std::vector<std::string> states{scene.state()};
  auto const record = [&] { states.push_back(scene.state()); };
  Mox::Ptr<StateRecorder> const recorder(new StateRecorder(scene.status, record));
  act(scene);
  record();
  return states;
}

inline bool isOneOf(std::string const& state, std::vector<std::string> const& states) {
  return std::find(states.begin(), states.end(), state) != states.end();
}

}  // namespace Hardware::Kest::Slice
