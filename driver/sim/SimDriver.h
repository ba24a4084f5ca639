#pragma once

#include <cstddef>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "driver/sim/CallLog.h"
#include "driver/sim/Devices.h"
#include "driver/sim/Export.h"
#include "driver/sim/FaultTable.h"
#include "driver/sim/Interfaces.h"
#include "driver/sim/StateFile.h"
#include "driver/sim/StateText.h"
#include "platform/fru/PciHam.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Sim {

/// A simulated linecard slice behind the driver's nine operations: its interfaces, its devices, a
/// log of the calls and a table of faults.
///
/// The operations do what `driver/KestDma.h` asks of the functions that they are named after; what
/// they answer stands with `Interfaces` and `Devices`. None throws: without memory the process
/// ends. A call is answered by the fault table if that has an answer for it, and then changes
/// nothing. Not safe for threads: use it on the thread that calls the driver.
class KEST_SIM_API SimDriver {
 public:
  explicit SimDriver(std::size_t logCapacity = CallLog::defaultCapacity);
  SimDriver(SimDriver const&) = delete;
  SimDriver& operator=(SimDriver const&) = delete;
  ~SimDriver();

  // The nine operations.

  int ifadd(Mox::String8 const& ifName, InterfaceParam const& param) noexcept;
  int ifdel(Mox::String8 const& ifName) noexcept;
  int nativeVlan(Mox::String8 const& ifName, bool mode, unsigned short vlanId) noexcept;
  /// ENODEV: the handle is null. Otherwise its full name is the chip's PCI path.
  int deviceRename(Mox::String8 const& devName, Mox::Ptr<Fru::PciHam const> const& pciHam) noexcept;
  int deviceParam(Mox::String8 const& devName, DeviceParam const& param) noexcept;
  int deviceDown(Mox::String8 const& devName) noexcept;
  int deviceUp(Mox::String8 const& devName) noexcept;
  int isDeviceUp(Mox::String8 const& devName, bool* up) noexcept;
  /// To standard error.
  void dump() noexcept;

  // What is there.

  /// Null when there is none of that name; valid until the next operation.
  Interface const* interface(Mox::String8 const& ifName) const;
  Device const* device(Mox::String8 const& devName) const;
  /// The PCI path of the device of that name.
  Mox::String8 const* pathOf(Mox::String8 const& devName) const;
  std::map<Mox::String8, Interface> const& interfaces() const { return state_.interfaces.all(); }
  /// By PCI path.
  std::map<Mox::String8, Device> const& devices() const { return state_.devices.all(); }
  CallLog const& log() const { return log_; }
  /// Everything, for people.
  void dump(std::ostream& out) const;
  std::string dumpText() const;
  /// The calls still in the log, a line each.
  std::string logText() const;
  /// Interfaces and devices, in the form of state files.
  std::string stateText() const;

  // What goes wrong.

  /// The faults of `text`, in the form of fault files, replace those that are still to come; flips
  /// that are due at once happen. Nothing changes when it throws.
  /// @param source name of the text, for errors
  /// @throw Mox::RangeException "SOURCE:LINE:COLUMN: expected ..., found ..."
  void faultsAre(std::string_view text, std::string const& source = "faults");
  /// The same from a file. @throw Mox::RangeException also when it cannot be read
  void faultFileIs(std::string const& path);
  /// The faults still to come, in the form of fault files.
  std::string faultsText() const;
  /// A device changes its state by itself. 19: there is no such device.
  int deviceFlip(Mox::String8 const& devName);

  // The state that outlives the process.

  /// Interfaces and devices become those of the file, unless it is missing or empty; from then on
  /// every change of them is in the file before the call that made it returns (`StateFile`). Faults
  /// and log are left as they are and not kept: a fault is planned for one run and counts that
  /// run's calls, and the log says what this process did. Nothing changes when it throws.
  /// @throw Mox::RangeException "PATH...: ..." as `readState` says, or when it cannot be read
  void stateFileIs(std::string const& path);

  /// Back to an empty slice without faults and with an empty log. A state file is left as it is and
  /// no longer kept.
  void reset();

 private:
  template <class Carry>
  int call(Operation operation, Mox::String8 const& name, std::string const& arguments,
           Carry carry);
  /// Owed by everything that may have changed the state.
  void keepState();

  SliceState state_;
  CallLog log_;
  FaultTable faults_;
  std::optional<StateFile> stateFile_;
};

/// The one that this library's nine driver functions work on.
KEST_SIM_API SimDriver& simDriver();

}  // namespace Hardware::Kest::Sim
