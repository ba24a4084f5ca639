#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "agent/access/Target.h"
#include "agent/process/DriverLibrary.h"
#include "agent/slice/Slice.h"
#include "sm/KestSliceDmaSm.h"

namespace Kest::Agent {

/// The outcome of applying a slice.
struct Applied {
  std::size_t announced = 0;
  std::size_t unchanged = 0;
  std::vector<std::string> notUp;
};

/// The parts of the running agent that the verbs of the control protocol work on.
struct RunningAgent {
  Mox::Ptr<Config> config;
  Mox::Ptr<Status> status;
  Mox::Ptr<Hardware::Kest::Slice::KestSliceDmaSm> sm;
  DriverLibrary const& driver;
  PciHandles const& handles;
  /// Whether a slice is being applied. Other changes would interfere with it.
  std::function<bool()> isApplying;
  /// Brings the configuration in line with `slice`, then calls `done`; never if the agent ends
  /// before.
  std::function<void(std::string const& file, Slice slice, std::function<void(Applied)> done)>
      apply;

  /// Where paths start.
  std::vector<Root> roots() const;
};

}  // namespace Kest::Agent
