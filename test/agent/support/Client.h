#pragma once

#include "test/support/SocketClient.h"

namespace Kest::Agent {

using Client = Support::SocketClient;

}  // namespace Kest::Agent
