#pragma once

#include <optional>
#include <string>

#include "agent/process/DriverLibrary.h"
#include "platform/mox/String8.h"

namespace Kest::Agent {

/// The functions that inspect and steer the simulated driver, beside the operations that every
/// driver has.
/// @throw DriverError when the driver is another one, or refuses
class SimulatedDriver {
 public:
  /// The library must outlive this.
  explicit SimulatedDriver(DriverLibrary const& library) noexcept : library_(library) {}

  bool isThere() const { return library_.symbol("kestDmaSimText") != nullptr; }

  /// The faults in a file, or in a text, replace those still to come.
  void faultFileIs(std::string const& path) const { callWithText("kestDmaSimFaultFileIs", path); }
  void faultsAre(std::string const& text) const { callWithText("kestDmaSimFaultsAre", text); }
  /// Takes interfaces and devices from the file, if it exists, and keeps them there.
  void stateFileIs(std::string const& path) const { callWithText("kestDmaSimStateFileIs", path); }
  /// A device changes its state behind its owner's back.
  void flip(Mox::String8 const& devName) const;
  /// @param what `dump`, `log`, `faults` or `state`
  std::string text(char const* what) const;

  /// The entry of that name as JSON, an object with one member; empty when there is none. A
  /// device's member is named by its PCI path.
  std::string interface(Mox::String8 const& ifName) const;
  std::string device(Mox::String8 const& devName) const;
  /// The name of the interface after that one; the first if `ifName` is empty.
  std::optional<Mox::String8> nextInterface(Mox::String8 const& ifName) const;

 private:
  template <class Entry>
  Entry entry(char const* name) const;
  void callWithText(char const* entryName, std::string const& text) const;
  std::string textOf(char const* entryName, Mox::String8 const& name) const;

  DriverLibrary const& library_;
};

}  // namespace Kest::Agent
