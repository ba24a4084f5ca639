#include "agent/verbs/RunningAgent.h"

#include "platform/mox/GenericIfPtrInterface.h"
#include "registry/SmType.h"

namespace Kest::Agent {

/// Only the state machine writes the status: here it is read-only.
std::vector<Root> RunningAgent::roots() const {
  return {{"config", [this] { return Mox::genericOf(config); }},
          {"status", [this] { return Mox::genericOf(Mox::Ptr<Status const>(status)); }},
          {"sm", [this] { return Mox::genericOf(sm); }}};
}

}  // namespace Kest::Agent
