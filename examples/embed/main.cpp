// The least that a program needs to run the library: two entities, the state machine between them,
// and a driver, here the simulated one.

#include <iostream>

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"
#include "sm/KestSliceDmaSm.h"

namespace {

using namespace Hardware::Kest::Slice;

/// Tells of every port that the state machine is through with.
class PortWatcher : public KestSliceDmaStatus::NotifieeConst {
 public:
  explicit PortWatcher(Mox::Ptr<KestSliceDmaStatus const> const& status) {
    notifierIs(status);
    isRegisteredNotifieeIs(true);
  }

  using NotifieeConst::onSwitchPort;
  void onSwitchPort(Mox::String8 ifName) override { std::cout << "told of " << ifName << '\n'; }
};

}  // namespace

int main() {
  Mox::Ptr<KestSliceDmaConfig> const config(new KestSliceDmaConfig("config"));
  Mox::Ptr<KestSliceDmaStatus> const status(new KestSliceDmaStatus("status"));
  Mox::Ptr<PortWatcher> const watcher(new PortWatcher(status));
  Mox::Ptr<KestSliceDmaSm> const sm = kestSliceDmaSmFactory(config, status);

  KestSliceDmaConfig::SwitchPort port;
  port.ifNameIs("et1");
  port.destIdIs(1);
  config->nativeVlanIs("et1", 10);
  config->switchPortIs(port);  // comes back when the interface exists

  std::cout << status->switchPort("et1") << '\n'
            << "native VLAN " << status->nativeVlan("et1") << '\n';
  return status->switchPort("et1").created() ? 0 : 1;
}
