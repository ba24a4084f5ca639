#pragma once

#include "driver/sim/Export.h"

/// What a process that loads this library without being linked against it can ask of the simulated
/// slice, `simDriver()`: entries to be found by name (dlsym), in terms of C.
///
/// Each returns 0, or -1 and stores an error's text at `error`, cut to fit `errorBytes` and ended
/// by a NUL. What is refused has changed nothing. No exception comes out of them. A null pointer is
/// taken for an empty text. As with the driver's operations, one thread makes all calls.
extern "C" {

/// The faults of the file, or of the text, replace those still to come; flips without `after`
/// happen at once (`FaultFile.h`). Errors begin with the file's path, or with "faults".
KEST_SIM_API int kestDmaSimFaultFileIs(char const* path, char* error, unsigned errorBytes) noexcept;
KEST_SIM_API int kestDmaSimFaultsAre(char const* text, char* error, unsigned errorBytes) noexcept;

/// The slice's state is taken from the file, if there is one, and kept there from then on
/// (`SimDriver::stateFileIs`).
KEST_SIM_API int kestDmaSimStateFileIs(char const* path, char* error, unsigned errorBytes) noexcept;

/// The device of that name changes its state by itself.
/// @param devName not ended by a NUL
KEST_SIM_API int kestDmaSimDeviceFlip(char const* devName, unsigned devNameBytes, char* error,
                                      unsigned errorBytes) noexcept;

/// Hands a text over to `sink`, which is called once, unless there is an error.
/// @param what which text:
///   "dump"    everything, for people, as `kestDmaDump` prints it
///   "log"     the last calls, a line each
///   "faults"  the faults still to come, in the form of fault files
///   "state"   interfaces and devices, in the form of state files (`StateText.h`)
/// @param sink `text` has `bytes` characters and is valid during the call only
KEST_SIM_API int kestDmaSimText(char const* what,
                                void (*sink)(void* context, char const* text, unsigned bytes),
                                void* context, char* error, unsigned errorBytes) noexcept;

/// Each of these hands a text over to `sink` as `kestDmaSimText` does, or does not call it when
/// there is no such interface or device.
/// @param name not ended by a NUL
/// @{
/// The interface, or the device, of that name: its entry in a state file (`StateText.h`), as an
/// object of its own on one line. The entry of a device is called by its PCI path.
KEST_SIM_API int kestDmaSimInterface(char const* name, unsigned nameBytes,
                                     void (*sink)(void* context, char const* text, unsigned bytes),
                                     void* context, char* error, unsigned errorBytes) noexcept;
KEST_SIM_API int kestDmaSimDevice(char const* name, unsigned nameBytes,
                                  void (*sink)(void* context, char const* text, unsigned bytes),
                                  void* context, char* error, unsigned errorBytes) noexcept;
/// The name of the first interface after `name` in the order of bytes; `name` itself need not
/// exist.
KEST_SIM_API int kestDmaSimNextInterface(char const* name, unsigned nameBytes,
                                         void (*sink)(void* context, char const* text,
                                                      unsigned bytes),
                                         void* context, char* error, unsigned errorBytes) noexcept;
/// @}
}
