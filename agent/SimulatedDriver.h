#pragma once

#include <string>

#include "agent/DriverLibrary.h"
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

 private:
  template <class Entry>
  Entry entry(char const* name) const;
  void callWithText(char const* entryName, std::string const& text) const;

  DriverLibrary const& library_;
};

}  // namespace Kest::Agent
