#pragma once

#include "agent/access/ControlError.h"

namespace Kest::Agent {

/// For a catch block: what the client is told of the exception being handled. A lack of memory is
/// thrown on.
ControlError currentRefusal();

}  // namespace Kest::Agent
