#pragma once

#include "driver/sim/SimDriver.h"
#include "platform/mox/Time.h"
#include "sm/KestSliceDmaSm.h"
#include "test/fuzz/Fuzz.h"

/// A state machine over the simulated driver for fuzzers, and time that stands still.
namespace Fuzz {

/// A new machine on an empty slice.
struct Machine {
  using Config = Hardware::Kest::Slice::KestSliceDmaConfig;
  using Status = Hardware::Kest::Slice::KestSliceDmaStatus;

  Machine() { Hardware::Kest::Sim::simDriver().reset(); }

  Mox::Ptr<Config> config{new Config("config")};
  Mox::Ptr<Status> status{new Status("status")};
  Mox::Ptr<Hardware::Kest::Slice::KestSliceDmaSm> sm{
      Hardware::Kest::Slice::kestSliceDmaSmFactory(config, status)};
};

}  // namespace Fuzz
