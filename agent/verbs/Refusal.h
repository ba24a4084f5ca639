#pragma once

#include "agent/access/ControlError.h"

namespace Kest::Agent {

/// For a catch block: what the client is told of the exception being handled. An exception that
/// refuses nothing, such as `std::bad_alloc`, is thrown on.
ControlError currentRefusal();

}  // namespace Kest::Agent
