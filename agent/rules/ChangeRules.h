#pragma once

#include "agent/access/Entities.h"
#include "agent/access/Target.h"

/// What is refused of changes by name, because the state machine would end the process over it: the
/// rules of slice files (`SliceRules.h`), and those that need the state as it is now. Each check
/// throws `Mox::RangeException`.
namespace Kest::Agent {

/// Before `value` is stored at an entry.
void checkStore(Target const& entry, Mox::GenericIf const& value);
/// Before an entry of the configuration is removed.
void checkRemove(Target const& entry, Config const& config, Status const& status);
/// Before an entry of the configuration is announced again.
void checkNotify(Target const& entry, Config const& config, Status const& status);
/// Before the configuration is brought in line with `wanted`.
void checkApply(Config const& wanted, Config const& config, Status const& status);
/// Before a handler that takes a key is called with it.
void checkCall(Mox::Attribute const& handler, Mox::String8 const& key, Config const& config,
               Status const& status);

}  // namespace Kest::Agent
