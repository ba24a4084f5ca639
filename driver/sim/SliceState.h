#pragma once

#include <map>

#include "driver/sim/Devices.h"
#include "driver/sim/Entries.h"
#include "driver/sim/Interfaces.h"
#include "driver/sim/Values.h"

namespace Hardware::Kest::Sim {

/// The state that outlives the process: the interfaces and devices that the operations have made.
struct SliceState {
  Interfaces interfaces;
  Devices devices;

  bool operator==(SliceState const&) const = default;
};

/// Entries as they are now; none: gone.
struct Change {
  Entries<Interface>::Changed interfaces;
  Entries<Device>::Changed devices;

  bool empty() const { return interfaces.empty() && devices.empty(); }
};

// What a state's document holds, for its writer and its reader.

inline constexpr char const* formatName = "kest-dma-sim-state/1";

/// Stands for `formatName` in the document.
struct Format {};

struct Document {
  Format format;
  std::map<Mox::String8, Interface> interfaces;
  std::map<Mox::String8, Device> devices;
};

/// The collections of a `Document` or a `Change`.
template <class Collections, class Visit>
void forCollections(Collections& all, Visit const& visit) {
  visit("interfaces", all.interfaces);
  visit("devices", all.devices);
}

template <class Visit>
void forMembers(Like<Document> auto& document, Visit const& visit) {
  visit("format", document.format);
  forCollections(document, visit);
}

template <class Visit>
void forMembers(Like<Change> auto& change, Visit const& visit) {
  forCollections(change, visit);
}

}  // namespace Hardware::Kest::Sim
