#pragma once

#include <sstream>

#include "platform/mox/Log.h"
#include "platform/mox/Trace.h"

/// What the state machine reports: trace points, assertions and a log message.
///
/// A trace point or an assertion is known to its readers by source name, line number and handler.
/// The numbers are stable identifiers: they never follow the source text.
namespace Hardware::Kest::Slice::detail {

/// The source name that traces and assertions carry.
inline constexpr char const* source = "KestSliceDmaSm";

struct Handler {
  char const* name;
  char const* signature;
};

namespace handler {
inline constexpr Handler doVerify{"doVerify",
                                  "void Hardware::Kest::Slice::KestSliceDmaSm::doVerify()"};
inline constexpr Handler handleMode{"handleMode",
                                    "void Hardware::Kest::Slice::KestSliceDmaSm::handleMode()"};
inline constexpr Handler handleInitialized{
    "handleInitialized", "void Hardware::Kest::Slice::KestSliceDmaSm::handleInitialized()"};
inline constexpr Handler handleTimerExpired{
    "handleTimerExpired", "void Hardware::Kest::Slice::KestSliceDmaSm::handleTimerExpired()"};
inline constexpr Handler handleSwitchPort{
    "handleSwitchPort",
    "void Hardware::Kest::Slice::KestSliceDmaSm::handleSwitchPort(Mox::String)"};
inline constexpr Handler handleNativeVlan{
    "handleNativeVlan",
    "void Hardware::Kest::Slice::KestSliceDmaSm::handleNativeVlan(Mox::String)"};
inline constexpr Handler handleDevice{
    "handleDevice", "void Hardware::Kest::Slice::KestSliceDmaSm::handleDevice(Mox::String)"};
inline constexpr Handler handleDeviceState{
    "handleDeviceState",
    "void Hardware::Kest::Slice::KestSliceDmaSm::handleDeviceState(Mox::String)"};
}  // namespace handler

/// Line numbers, in order.
namespace line {
inline constexpr unsigned doVerify = 34;
inline constexpr unsigned verifyCreated = 38;
inline constexpr unsigned verifyDevice = 48;
inline constexpr unsigned verifyRegistered = 49;
inline constexpr unsigned verifyState = 51;
inline constexpr unsigned handleMode = 57;
inline constexpr unsigned handleInitialized = 71;
inline constexpr unsigned handleTimerExpired = 84;
inline constexpr unsigned pollFailed = 97;
inline constexpr unsigned pollState = 103;
inline constexpr unsigned handleSwitchPort = 126;
inline constexpr unsigned interfaceTimeout = 142;
inline constexpr unsigned handleNativeVlan = 170;
inline constexpr unsigned interfaceName = 171;
inline constexpr unsigned nativeVlanSet = 186;
inline constexpr unsigned handleDevice = 204;
inline constexpr unsigned registerDevice = 211;
inline constexpr unsigned handleDeviceState = 236;
inline constexpr unsigned wantedState = 262;
}  // namespace line

/// The library's trace facility, "KestSliceDma"; made at the first call.
inline Mox::TraceHandle& traceHandle() {
  static Mox::TraceHandle handle("KestSliceDma");
  return handle;
}

/// Trace point. `write` streams the message, which is built only when its level is on or there is a
/// coverage stream.
template <class Write>
void trace(unsigned level, Handler const& handler, unsigned lineNumber, Write const& write) {
  if (!Mox::traceWanted(traceHandle(), level)) [[likely]]
    return;
  std::ostringstream message;
  write(message);
  Mox::traceHelper(traceHandle(), Mox::String8(message.str()), level, source, lineNumber,
                   handler.name);
}

/// Trace point whose message is the handler's signature.
inline void traceSignature(unsigned level, Handler const& handler, unsigned lineNumber) {
  trace(level, handler, lineNumber, [&](std::ostream& out) { out << handler.signature; });
}

/// Fails the standard assertion `expression`: reports it on standard error and aborts.
[[noreturn]] void assertionFailed(char const* expression, Handler const& handler,
                                  unsigned lineNumber);

/// The log message of a device that went up or down unexpectedly. Arguments: device, expected and
/// actual state. Defined at the first call, which the library makes when it is loaded.
Mox::LogHandle const& deviceStateError();

}  // namespace Hardware::Kest::Slice::detail
