#pragma once

#include <memory>
#include <vector>

#include "platform/fru/PciHam.h"
#include "platform/mox/GenericIf.h"
#include "sm/KestSliceDmaSm.h"
#include "test/support/RecordingDriver.h"
#include "test/support/VirtualTime.h"

namespace Fuzz {

using Generic = std::unique_ptr<Mox::GenericIf>;

/// A machine over the recording driver, whose devices are as they were last brought.
struct MachineByName {
  using Config = Hardware::Kest::Slice::KestSliceDmaConfig;
  using Status = Hardware::Kest::Slice::KestSliceDmaStatus;
  using Sm = Hardware::Kest::Slice::KestSliceDmaSm;

  MachineByName();

  /// Ends the process unless walks, lookups and counts of the entities agree.
  void requireWhole() const;

  Support::Journal journal;
  Support::VirtualTime time{journal};
  Hardware::Kest::RecordingDriver driver{journal};
  Mox::Ptr<Fru::PciHam> handle{new Fru::PciHam("handle")};
  Mox::Ptr<Config> config{new Config("config")};
  Mox::Ptr<Status> status{new Status("status")};
  Mox::Ptr<Sm> sm;
};

/// Whether an operation would end the process by the machine's rules: an interface name without
/// 'et', a registered device without a configured state, a poll or a verification that finds a
/// difference.
/// @param all what there is; machines may work on any of it
bool mayEnd(std::vector<Generic> const& all, Mox::GenericIf const& on, Mox::AttributeOp const& op,
            Mox::GenericIf const* arg);

}  // namespace Fuzz
