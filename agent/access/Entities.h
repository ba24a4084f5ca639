#pragma once

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"

/// Short names for the two entities that the agent works with.
namespace Kest::Agent {

using Config = Hardware::Kest::Slice::KestSliceDmaConfig;
using Status = Hardware::Kest::Slice::KestSliceDmaStatus;

}  // namespace Kest::Agent
