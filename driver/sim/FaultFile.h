#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "driver/sim/FaultTable.h"
#include "platform/mox/String8.h"

/// Fault files: one statement a line, what follows `#` is comment, blank lines mean nothing.
///
///     fail OPERATION NAME ANSWER times N
///     fail OPERATION NAME ANSWER always
///     flip DEVICE
///     flip DEVICE after N OPERATION NAME
///
/// OPERATION is a driver function such as `kestDmaIfadd`. NAME is an interface's or device's name
/// in apostrophes, or `*` for any. ANSWER is an error number, N a count of calls. A `flip` without
/// `after` happens at once and needs a device of that name.
namespace Hardware::Kest::Sim {

class Devices;

struct Faults {
  FaultTable table;
  std::vector<Mox::String8> flips;  ///< devices to flip at once
};

/// @param source name of the text, for errors
/// @throw Mox::RangeException "SOURCE:LINE:COLUMN: expected ..., found ...", both counted from 1
Faults readFaults(std::string_view text, std::string const& source, Devices const& devices);

}  // namespace Hardware::Kest::Sim
