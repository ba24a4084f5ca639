#pragma once

#include <string>
#include <string_view>

#include "driver/sim/Devices.h"
#include "driver/sim/Export.h"
#include "driver/sim/Interfaces.h"

/// The text form of a slice's state: a JSON document.
///
///     {
///       "format": "kest-dma-sim-state/1",
///       "interfaces": {"et3/1": {"destId": 7, ..., "nativeVlan": 4096, "mode": false}},
///       "devices": {"/pci/0000:05:00.0": {"name": "fap0", "param": null, "up": false, "flips": 0}}
///     }
///
/// Every member is there and no other. Interfaces are found by name, devices by PCI path. FAP types
/// go by name, or by number when they have none. Strings and keys are as `JsonString.h` says.
namespace Hardware::Kest::Sim {

/// What outlives the process: all that the operations have made of the slice.
struct SliceState {
  Interfaces interfaces;
  Devices devices;

  bool operator==(SliceState const&) const = default;
};

/// Indented, ended by a newline.
KEST_SIM_API std::string stateText(SliceState const& state);

/// Refuses also what the rules of the operations do not allow.
/// @param source name of the text, for errors
/// @throw Mox::RangeException "SOURCE:LINE:COLUMN: ..." for what is no JSON, LINE and COLUMN those
/// of the character at which that shows, both counted from 1; otherwise "SOURCE: POINTER: expected
/// ..., found ...", POINTER the JSON pointer of the value, left out for the whole document
KEST_SIM_API SliceState readState(std::string_view text, std::string const& source);

}  // namespace Hardware::Kest::Sim
