#pragma once

#include <string>
#include <string_view>

#include "agent/slice/Slice.h"

namespace Kest::Agent {

/// Reads a slice file: one statement a line, `#` starts a comment, in the text forms
/// of the configuration entity:
///
///     pciHam '/pci/0000:05:00.0'
///     sliceId 'Linecard3'
///     device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {...})
///     deviceState 'fap0' 'deviceStateUp'
///     switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {...})
///     nativeVlan 'et3/1' 10
///     switchportMode 'et3/1' 'switchportModeTrunk'
///     end
///
/// `pciHam` declares a handle that devices in lines below it refer to. `end` may be left out,
/// unless it is required; nothing follows it. A file whose name ends in
/// `.json` holds the same as JSON:
///
///     {"pciHam": ["/pci/0000:05:00.0"],
///      "sliceId": "Linecard3",
///      "device": {"fap0": {"pciHam": "/pci/0000:05:00.0", ...}},
///      "deviceState": {"fap0": "deviceStateUp"},
///      "switchPort": {"et3/1": {"destId": 1, ...}},
///      "nativeVlan": {"et3/1": 10},
///      "switchportMode": {"et3/1": "switchportModeTrunk"},
///      "end": true}
///
/// There, members but the last come in any order, and the field that is a record's key may be left
/// out.
///
/// The file is checked whole: `Text::FileError` for the first place that is malformed, that gives a
/// key a second time, or that would end the process by the state machine's rules (see
/// `SliceRules.h`); then nothing is left behind.
///
/// The handles of the slice are not in the entity tree: see `PciHandles::enterTree`. It must be a
/// regular file, and not change while it is read.
Slice readSliceFile(std::string const& path, SliceEnd end = SliceEnd::optional);

/// The same for a text; `name` stands for the file in errors, and tells JSON from statements.
Slice parseSlice(std::string_view name, std::string_view text);

}  // namespace Kest::Agent
