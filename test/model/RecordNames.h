#pragma once

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"

/// Short names for the records of both entities.
namespace Hardware::Kest::Slice {

using ConfigSwitchPort = KestSliceDmaConfig::SwitchPort;
using ConfigDevice = KestSliceDmaConfig::Device;
using StatusSwitchPort = KestSliceDmaStatus::SwitchPort;
using StatusDevice = KestSliceDmaStatus::Device;

}  // namespace Hardware::Kest::Slice
