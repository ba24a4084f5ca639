#pragma once

#include <string>
#include <string_view>

#include "driver/sim/Export.h"
#include "driver/sim/SliceState.h"

/// The text form of a slice's state: a JSON document, and what has changed since, a line for each
/// call (`ChangeLine.h`).
///
///     {
///       "format": "kest-dma-sim-state/1",
///       "interfaces": {"et3/1": {"destId": 7, ..., "nativeVlan": 4096, "mode": false}},
///       "devices": {"/pci/0000:05:00.0": {"name": "fap0", "param": null, "up": false, "flips": 0}}
///     }
///     +0a1b2c3d {"interfaces":{"et3/1":null,"et4":{"destId":8,...}},"devices":{}}
///
/// Every member of the document is there and no other. Interfaces are found by name, devices by PCI
/// path. FAP types go by name, or by number when they have none. Strings and keys are as
/// `Text::percentEncoded` makes them. A change has the entries that it is about, whole, or null for
/// one that has gone. A last change without the end of its line is ignored: its writer was killed.
namespace Hardware::Kest::Sim {

/// The document alone: indented, ended by a newline.
KEST_SIM_API std::string stateText(SliceState const& state);
/// Without the line's check and end.
KEST_SIM_API std::string changeText(Change const& change);
/// One entry of `interfaces`, or of `devices`, as an object of its own on one line.
KEST_SIM_API std::string entryText(Mox::String8 const& ifName, Interface const& interface);
KEST_SIM_API std::string entryText(Mox::String8 const& pciPath, Device const& device);

/// Also refuses a state that the rules of the operations do not allow.
/// @param name of the text, for errors
/// @throw Mox::RangeException "NAME:LINE:COLUMN: POINTER: expected ..., found ...": where the
/// value's member begins, or where it shows that the text is no JSON, both counted from 1, and the
/// value's JSON pointer, left out for the whole document
KEST_SIM_API SliceState readState(std::string_view text, std::string const& name);

}  // namespace Hardware::Kest::Sim
