#pragma once

/// Environment variables by which the test program steers the library in the agent's process.
namespace Kest::Crash {

/// The moment to be killed at, from 1; 0 or nothing: never.
inline constexpr char const* killAtVariable = "KEST_CRASH_AT";
/// The file that gets the slice's state, as the driver knows it when the process is killed between
/// two of its calls. Nothing is written when it is killed inside one.
inline constexpr char const* driverStateVariable = "KEST_CRASH_DRIVER_STATE";

}  // namespace Kest::Crash
