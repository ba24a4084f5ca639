#pragma once

#include "agent/access/Entities.h"
#include "agent/access/Target.h"

/// Refuses changes that would make the state machine end the process. These checks add to
/// the rules for values (`SliceRules.h`) those that depend on the current state. Each check throws
/// `Mox::RangeException`.
namespace Kest::Agent {

/// Before `value` is stored at an entry.
void checkStore(Target const& entry, Mox::GenericIf const& value);
/// Before an entry of the configuration is removed.
void checkRemove(Target const& entry, Config const& config, Status const& status);
/// Before an entry of the configuration is announced again.
void checkNotify(Target const& entry, Config const& config, Status const& status);
/// Before a slice with a device is applied: the slice must have a state for the device.
void checkHasState(Mox::String8 const& devName, Config const& slice);
/// Before the configuration is brought in line with `wanted`.
void checkApply(Config const& wanted, Config const& config, Status const& status);
/// Before a handler that takes a key is called with it.
void checkCall(Mox::Attribute const& handler, Mox::String8 const& key, Config const& config,
               Status const& status);

}  // namespace Kest::Agent
