#pragma once

#include "agent/access/Collections.h"
#include "agent/show/StatusReport.h"
#include "agent/slice/Comparison.h"
#include "agent/slice/SliceFile.h"
#include "agent/slice/SliceWriter.h"
#include "platform/mox/Dir.h"
#include "platform/mox/RangeException.h"
#include "test/fuzz/Machine.h"
#include "text/FileError.h"

/// Properties of slice files in either format.
namespace Fuzz {

using Kest::Agent::Changes;
using Kest::Agent::Slice;

/// Requires that the slices do not differ, nor their handles.
inline void requireSameSlice(Slice const& a, Slice const& b, std::string_view text) {
  Changes const changes = Kest::Agent::changesBetween(*a.config, *b.config);
  require(changes.steps.empty(), "a slice is read as it was written", text);
  require(a.handles.paths() == b.handles.paths(), "handles are written too", text);
}

inline void requireWrittenAsStatements(Slice const& slice) {
  std::string const text = Kest::Agent::sliceText(*slice.config, slice.handles.paths());
  requireSameSlice(slice, Kest::Agent::parseSlice("written.slice", text), text);
}

/// @param mayRefuse the slice may have a string that JSON cannot hold
inline void requireWrittenAsJson(Slice const& slice, bool mayRefuse) {
  std::string text;
  try {
    text = Kest::Agent::sliceJson(*slice.config, slice.handles.paths());
  } catch (Mox::RangeException const& refused) {
    require(mayRefuse, "what was JSON can be written as JSON", refused.what());
    return;
  }
  requireSameSlice(slice, Kest::Agent::parseSlice("written.json", text), text);
}

/// Brings a machine to the slice, announces everything again, and brings it back to nothing: the
/// process survives.
inline void requireCarriedOut(Slice const& slice) {
  Machine machine;
  auto const apply = [&](Machine::Config const& wanted) {
    for (auto const& step : Kest::Agent::changesBetween(*machine.config, wanted).steps) {
      step.apply(*machine.config);
    }
  };
  apply(*slice.config);
  for (Mox::String8 const& key : Kest::Agent::keysOf<Machine::Config::Devices>(*machine.config)) {
    machine.config->deviceNotify(key);
    machine.config->deviceStateNotify(key);
  }
  for (Mox::String8 const& key :
       Kest::Agent::keysOf<Machine::Config::SwitchPorts>(*machine.config)) {
    machine.config->switchPortNotify(key);
  }
  if (Kest::Agent::notUp(*machine.config, *machine.status).empty()) machine.sm->doVerify();
  apply(*Mox::Ptr<Machine::Config>(new Machine::Config("nothing")));
  require(Hardware::Kest::Sim::simDriver().interfaces().empty(), "no port stays behind");
}

/// Reads a slice file. An accepted one is checked and carried out.
template <class Check>
void readSlice(char const* name, std::string_view text, Check const& check) {
  bool taken = false;
  try {
    Slice slice = Kest::Agent::parseSlice(name, text);
    taken = true;
    require(Mox::root()->entities() == 0, "a slice that is read leaves the entity tree alone");
    slice.handles.enterTree();
    check(slice);
    requireCarriedOut(slice);
  } catch (Text::FileError const& refused) {
    require(!taken, "what was written is taken", refused.what());
    requirePlace(refused.what(), name, text);
  }
  require(Mox::root()->entities() == 0, "a slice that has gone leaves nothing in the entity tree");
}

}  // namespace Fuzz
