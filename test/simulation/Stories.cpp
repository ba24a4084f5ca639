#include "test/simulation/Stories.h"

namespace Simulation {

namespace {

constexpr Story all[] = {
    // A device is up or down, and then the driver thinks otherwise.
    {{"set config0 device $K $V direct", "set config0 deviceState $K 1 direct", "flip $K",
      "pass 2100000", "poll direct"}},
    {{"set config0 device $K $V direct", "set config0 deviceState $K 2 direct", "flip $K",
      "poll by-name"}},
    {{"set config0 device $K $V direct", "ignore-signal-7 on", "forget $K", "poll direct", "mend",
      "ignore-signal-7 off"}},
    {{"set config0 device $K $V direct", "fault isUp $K 1 0 throw", "mode initial direct",
      "mode polling by-name", "pass 2100000"}},
    {{"set status0 deviceState $K 3 direct", "poll direct", "del status0 deviceState $K direct"}},
    {{"set config0 device $K $V direct", "set config0 deviceState $K 1 direct",
      "fault up $K 2 22 none", "set config0 device $K $V direct",
      "notify config0 deviceState $K direct"}},
    {{"machine config0 status0 on direct", "set config0 device $K $V direct",
      "set config0 deviceState $K 1 direct", "del config0 deviceState $K by-name"}},
    // Verification.
    {{"machine config0 status0 on direct", "del-all config0 switchPort", "del-all config0 device",
      "set config0 device $K 1 direct", "set config0 deviceState $K 1 direct", "verify direct",
      "fault down $K 1 22 none", "set config0 deviceState $K 2 direct"}},
    {{"del-all config0 switchPort", "fault param $K 1 22 none", "set config0 device $K $V direct",
      "verify by-name"}},
    // A port that takes its time.
    {{"retry $V", "fault ifadd $K 12 11 none", "set config0 switchPort $K $V direct", "retry 3"}},
    {{"retry 3", "fault ifadd $K 1 11 wall-forward", "notify config0 switchPort $K direct",
      "set config0 switchPort $K $V direct"}},
    {{"fault ifadd $K 2 11 retry-9", "set config0 switchPort $K $V direct",
      "del config0 switchPort $K direct"}},
    {{"config config0 direct", "set config0 switchPort 5 $V direct"}},
    // Observers in the way of a handler.
    {{"machine config0 status0 off direct", "renew $Q status0",
      "set config0 switchPort $K $V direct", "set config0 nativeVlan $K 0 direct",
      "at $Q 0: set config0 switchportMode $K $V direct", "set config0 nativeVlan $K 1 direct",
      "set config0 switchportMode $K $V direct"}},
    {{"machine config0 status0 on direct", "renew $Q status0", "at $Q $V: config config1 direct",
      "set config0 switchPort $K $V direct", "set config0 nativeVlan $K $V direct",
      "config config0 direct"}},
    {{"machine config0 status0 on direct", "renew $Q status0", "at $Q $V: config-del by-name",
      "set config0 switchPort $K $V direct", "set config0 nativeVlan $K $V direct",
      "config config0 direct"}},
    // Observers in the way of a delivery.
    {{"renew $P config0", "config-del direct", "config config0 direct",
      "at $P 0: config none direct", "notify config0 switchPort $K direct",
      "config config0 by-name", "config config0 direct"}},
    {{"renew $P config0", "config-del direct", "config config0 direct", "at $P 0: zombie on direct",
      "notify config0 device $K direct", "zombie off direct"}},
    {{"renew 0 config0", "renew 1 config0", "renew 2 config0", "at 1 0: drop 2",
      "at 0 0: set config0 nativeVlan $K $V direct", "notify config0 switchportMode $K direct"}},
    {{"renew $P config0", "del-all config0 nativeVlan", "set config0 nativeVlan $K 1 direct",
      "at $P 0: set config0 nativeVlan 0 2 direct", "at $P 0: set config0 nativeVlan 3 2 direct",
      "at $P 0: set config0 nativeVlan 4 2 direct", "del-all config0 nativeVlan"}},
    {{"renew 1 config0", "renew 3 config0", "at 1 0: drop 3", "at 1 0: renew 3 config0",
      "notify config0 deviceState $K direct"}},
    // Reactors that go their own way.
    {{"reactor-registered off config", "active off direct", "active on by-name",
      "reactor-registered on config"}},
    {{"reactor-registered off timer", "active off direct", "active on direct",
      "reactor-registered on timer"}},
    {{"active off direct", "config config1 direct", "active on direct",
      "notify config1 switchPort $K direct", "config config0 direct"}},
    {{"zombie on direct", "config-del by-name", "config config0 direct",
      "notify config0 device $K direct", "zombie off by-name"}},
    {{"zombie on direct", "clock-del direct", "clock clock1 direct", "reactor-registered on timer",
      "pass 1", "zombie off direct"}},
    {{"clock-del direct", "clock clock0 direct", "pass 1"}},
    {{"set config0 device $K $V direct", "clock clock0 direct", "fault isUp $K 1 0 throw",
      "clock clock1 direct", "handle-mode direct", "pass 2100000", "clock clock2 direct"}},
    {{"simulation-vmid on", "mode initial direct", "mode polling direct", "simulation-vmid off"}},
    // Timers in each other's way.
    {{"timer 0 clock0 500", "timer 1 clock0 1000", "at 7 0: timer-drop 1", "pass 2000"}},
    {{"timer 1 clock1 500", "timer 0 clock1 400", "at 7 0: timer 1 clock0 1", "pass 2000"}},
};

}  // namespace

std::span<Story const> stories() {
  return all;
}

}  // namespace Simulation
