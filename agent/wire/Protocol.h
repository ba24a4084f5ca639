#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string>

/// What both ends of the control protocol (`doc/control-protocol.md`) share.
namespace Kest::Wire {

// Sizes are in bytes; the size of a request does not include its newline.

/// A request of a client that may only read, with the bytes that follow the request.
inline constexpr std::size_t longestRequest = std::size_t{64} << 10;
/// A request of root or the agent's user, without the bytes that follow it.
inline constexpr std::size_t longestTrustedRequest = std::size_t{1} << 20;
inline constexpr std::size_t deepestRequest = 16;      // nested arrays and objects
inline constexpr std::size_t mostRequestValues = 256;  // names of members included
inline constexpr std::size_t longestId = 1024;         // as JSON text
/// Further events are lost, and counted.
inline constexpr std::size_t mostWaitingEvents = std::size_t{64} << 10;

inline constexpr std::size_t mostConnections = 1000;
inline constexpr std::size_t mostConnectionsOfUser = 64;  // except root and the agent's user
inline constexpr std::size_t connectionsKept = 32;        // for root and the agent's user
/// How long a client may neither send nor read anything, in seconds, unless it watches.
inline constexpr double longestSilence = 600;

/// Kinds of errors that the agent replies with.
enum class ErrorKind { request, path, value, refused, denied, busy, file, internal };

constexpr char const* name(ErrorKind kind) {
  constexpr char const* names[] = {"request", "path", "value", "refused",
                                   "denied",  "busy", "file",  "internal"};
  return names[static_cast<std::size_t>(kind)];
}

/// The default path of the agent's socket: `KEST_SLICE_AGENT_SOCKET` if it is set
/// and not empty, `/run/kest-slice-agent.sock` for root, `kest-slice-agent.sock` in
/// `XDG_RUNTIME_DIR`; otherwise nowhere.
inline std::optional<std::string> defaultSocketPath() {
  auto const variable = [](char const* called) {
    char const* const value = std::getenv(called);
    return std::string(value == nullptr ? "" : value);
  };
  if (std::string path = variable("KEST_SLICE_AGENT_SOCKET"); !path.empty()) return path;
  if (geteuid() == 0) return "/run/kest-slice-agent.sock";
  std::string const directory = variable("XDG_RUNTIME_DIR");
  if (directory.empty()) return std::nullopt;
  return directory + "/kest-slice-agent.sock";
}

}  // namespace Kest::Wire
