#pragma once

#include "agent/access/Entities.h"
#include "agent/slice/PciHandles.h"
#include "platform/mox/Ptr.h"

namespace Kest::Agent {

/// What a slice file asks for.
struct Slice {
  Mox::Ptr<Config> config;  // a configuration of its own, observed by nobody
  PciHandles handles;
};

/// Whether a file must end with `end`, which says that it is whole.
enum class SliceEnd { optional, required };

}  // namespace Kest::Agent
