#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string>

/// What both ends of the control protocol (`doc/control-protocol.md`) know.
namespace Kest::Wire {

inline constexpr std::size_t longestRequest = std::size_t{1} << 20;    // bytes, without newline
inline constexpr std::size_t deepestRequest = 16;                      // nested arrays and objects
inline constexpr std::size_t mostUnreadOutput = std::size_t{4} << 20;  // bytes, a connection
inline constexpr std::size_t mostConnections = 1000;

/// Kinds of errors that the agent replies with.
enum class ErrorKind { request, path, value, refused, denied, busy, file, internal };

constexpr char const* name(ErrorKind kind) {
  constexpr char const* names[] = {"request", "path", "value", "refused",
                                   "denied",  "busy", "file",  "internal"};
  return names[static_cast<std::size_t>(kind)];
}

/// Where the agent's socket is unless it is told otherwise: `KEST_SLICE_AGENT_SOCKET` if it is set
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
