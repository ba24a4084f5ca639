#pragma once

#include <string>
#include <string_view>

#include "agent/PciHandles.h"
#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"
#include "platform/mox/Ptr.h"

namespace Kest::Agent {

using Config = Hardware::Kest::Slice::KestSliceDmaConfig;
using Status = Hardware::Kest::Slice::KestSliceDmaStatus;

/// What a slice file asks for.
struct Slice {
  Mox::Ptr<Config> config;  // a configuration of its own, observed by nobody
  PciHandles handles;
};

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
///
/// `pciHam` declares a handle that devices in lines below it refer to. The file is checked whole:
/// `FileError` for the first line that is malformed, that gives a key a second time, or that would
/// end the process by the state machine's rules (see `SliceRules.h`); then nothing is left behind.
Slice readSliceFile(std::string const& path);

/// The same for a text; `name` stands for the file in errors.
Slice parseSlice(std::string_view name, std::string_view text);

}  // namespace Kest::Agent
