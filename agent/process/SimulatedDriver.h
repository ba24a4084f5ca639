#pragma once

#include <optional>
#include <string>

#include "agent/process/DriverLibrary.h"
#include "platform/mox/String8.h"

namespace Kest::Agent {

/// The entries by which the simulated driver is inspected and steered, beside the operations that
/// every driver has. `DriverError` when the driver is another one, or refuses.
class SimulatedDriver {
 public:
  /// The library must outlive this.
  explicit SimulatedDriver(DriverLibrary const& library) noexcept : library_(library) {}

  bool isThere() const { return library_.symbol("kestDmaSimText") != nullptr; }

  /// The faults of a file, or of a text, replace those still to come.
  void faultFileIs(std::string const& path) const { callWithText("kestDmaSimFaultFileIs", path); }
  void faultsAre(std::string const& text) const { callWithText("kestDmaSimFaultsAre", text); }
  /// Interfaces and devices are those of the file, if there is one, and are kept there.
  void stateFileIs(std::string const& path) const { callWithText("kestDmaSimStateFileIs", path); }
  /// A device changes its state behind its owner's back.
  void flip(Mox::String8 const& devName) const;
  /// @param what `dump`, `log`, `faults` or `state`
  std::string text(char const* what) const;

  /// The entry of that name in the JSON of its state, an object with one member; empty when there
  /// is none. A device's member is called by its PCI path.
  std::string interface(Mox::String8 const& ifName) const;
  std::string device(Mox::String8 const& devName) const;
  /// The interface's name that follows that one, or the first after an empty one.
  std::optional<Mox::String8> nextInterface(Mox::String8 const& ifName) const;

 private:
  template <class Entry>
  Entry entry(char const* name) const;
  void callWithText(char const* entryName, std::string const& text) const;
  std::string textOf(char const* entryName, Mox::String8 const& name) const;

  DriverLibrary const& library_;
};

}  // namespace Kest::Agent
