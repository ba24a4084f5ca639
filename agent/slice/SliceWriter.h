#pragma once

#include <string>
#include <vector>

#include "agent/slice/SliceFile.h"

/// A configuration as a slice file, which reads back to the same configuration: handles first, then
/// what is of devices, then what is of ports, keys in the order in which people number things.
///
/// Handles are those that the configuration's devices refer to, and those whose paths are given
/// besides. What the configuration holds against the rules of slice files (`SliceRules.h`), because
/// another writer put it there, is written as it is; it is refused when it is read.
namespace Kest::Agent {

/// As statements.
std::string sliceText(Config const& config, std::vector<Mox::String8> const& handles = {});

/// As JSON, one entry a line. `Mox::RangeException` for a string that is no UTF-8: JSON cannot hold
/// it, statements can.
std::string sliceJson(Config const& config, std::vector<Mox::String8> const& handles = {});

}  // namespace Kest::Agent
