#pragma once

#include "platform/fru/PciHam.h"
#include "platform/hardware/kest/FapType.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

/// The DMA driver: what the state machine requires of it.
///
/// The library only declares these nine operations; a driver library defines them all. Each is
/// called on the agent's activity thread, one at a time, and returns when the driver has finished.
/// None may throw. Strings and handles are valid for the length of the call; what the driver wants
/// to keep it copies or counts. Results are error numbers: 0 success, 11 (EAGAIN) try again,
/// 19 (ENODEV) no such device; what other numbers mean to the caller stands with each operation.
namespace Hardware::Kest {

/// Stands for no VLAN and for no interface id: just outside the 12 bits of a VLAN id.
inline constexpr unsigned short noVlanOrInterface = 4096;

/// Creates the kernel network interface of one front-panel port, or brings an existing one in line
/// with changed arguments: no `kestDmaIfdel` comes in between.
///
/// @param ifName interface name
/// @param destId destination identifier of the port
/// @param shadowIntfId identifier of the port's shadow interface, -1 for none
/// @param trafficClass traffic class of the port's packets
/// @param devName device that carries the port; may be empty
/// @param fapNum number of the FAP on that device
/// @param ctrl control flag of the port
/// @param hwLag whether the port is a hardware link aggregate
/// @param macAddr MAC address as text, `00:1c:73:0a:0b:0c`
/// @return 0: the interface exists as asked. 11: try again; the caller pauses 100 ms and calls
/// again
///   with the same arguments, for at most `INTF_ADD_RETRY_TIMEOUT_SECONDS`. Other: failed; the
///   caller records that and does not try again by itself.
int kestDmaIfadd(char const* ifName, int destId, int shadowIntfId, int trafficClass,
                 Mox::String8 devName, int fapNum, bool ctrl, bool hwLag, char const* macAddr);

/// Deletes the interface of a port that the configuration no longer holds. The name may be one that
/// the driver never created. The result is not used.
int kestDmaIfdel(char const* ifName);

/// Sets the native VLAN of an existing interface.
///
/// @param mode true exactly when the port's switch port mode has the numeric value 2
/// @param vlanId VLAN id; `noVlanOrInterface`, always with `mode` false, clears the native VLAN
/// @return 0: done. Other: when a VLAN was to be set, the caller ends the process; the result of a
///   clear is not used.
int kestDmaNativeVlan(char const* ifName, bool mode, unsigned short vlanId);

/// Gives the driver's device that is reached through `pciHam` the name `devName`. Called before
/// every registration of the device, the handle being the one that the configuration holds, which
/// may be null. The result is not used.
int kestDmaDeviceRename(Mox::String8 devName, Mox::Ptr<Fru::PciHam const> pciHam);

/// Registers a device's parameters. Called after `kestDmaDeviceRename` and `kestDmaDeviceDown`,
/// with the device down.
///
/// @return 0: registered. Other: refused; the device is then left down.
int kestDmaDeviceParam(Mox::String8 devName, unsigned numFaps, FapType fapType,
                       unsigned cpuTmSysPort, unsigned cpuEthSysPort, unsigned cpuRawSysPort,
                       unsigned sflowPort, unsigned cpuAradSysPort, unsigned cpuArad,
                       unsigned cpuAradBridge);

/// Takes a device down; one that is down already stays so. The result is not used when a
/// registration follows; otherwise a non-zero result leaves the recorded state as it is.
int kestDmaDeviceDown(Mox::String8 devName);

/// Brings a registered device up. A non-zero result leaves the recorded state as it is.
int kestDmaDeviceUp(Mox::String8 devName);

/// Asks whether a device is up.
///
/// @param up where to store the answer; meaningful only with result 0
/// @return 0: answered. 19: no such device; the caller raises signal 7 against its own process.
///   Other: the caller ends the process.
int kestDmaIsDeviceUp(Mox::String8 devName, bool* up);

/// Writes the driver's state where its maintainers will find it, for diagnosis. Called when a
/// device is not in the state that it was brought to, before that is logged and ends the process.
void kestDmaDump();

}  // namespace Hardware::Kest
