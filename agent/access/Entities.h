#pragma once

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"

/// The two entities that the agent is about, by short names.
namespace Kest::Agent {

using Config = Hardware::Kest::Slice::KestSliceDmaConfig;
using Status = Hardware::Kest::Slice::KestSliceDmaStatus;

}  // namespace Kest::Agent
