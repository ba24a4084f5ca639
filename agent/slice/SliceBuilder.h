#pragma once

#include <map>
#include <memory>
#include <string>

#include "agent/slice/Slice.h"
#include "platform/mox/GenericIf.h"
#include "platform/mox/TypeNode.h"

namespace Kest::Agent {

/// Puts a slice together from what a reader of slice files finds, and keeps the rules that all of
/// them share: nothing is given twice, handles are declared before devices refer to them, and the
/// values are such as the state machine takes (`SliceRules.h`).
///
/// Refusals are `Mox::RangeException`s; where that is in the file, the reader knows. A builder that
/// has refused something is given up, and nothing is left behind.
class SliceBuilder {
 public:
  SliceBuilder();

  /// Where the reader is, as in `line 3`: what comes a second time is refused with the place where
  /// it came first.
  void placeIs(std::string place) { place_ = std::move(place); }

  void handle(Mox::String8 const& path);
  /// What `PciHandles::inTree` says, for a text that may be the path of a handle.
  PciHandles inTree(Mox::String8 const& text) { return slice_.handles.inTree(text); }
  /// Begins an attribute that is no collection.
  void begin(Mox::Attribute const& attribute);
  /// Begins an entry of a collection.
  void begin(Mox::Attribute const& collection, Mox::String8 const& key);
  void check(Mox::GenericIf const& value) const;
  /// Checks the value of what has been begun, and stores it.
  /// @param key null for an attribute that is no collection
  void store(Mox::Attribute const& attribute, Mox::String8 const* key, Mox::GenericIf const& value);

  Config const& config() const { return *slice_.config; }
  Slice take();

 private:
  void unique(std::string const& what);

  Slice slice_;
  std::unique_ptr<Mox::GenericIf> adapter_;  // of the configuration
  std::string place_;
  std::map<std::string, std::string> places_;  // by what was given there
};

}  // namespace Kest::Agent
