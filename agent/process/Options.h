#pragma once

#include <optional>
#include <string>
#include <variant>

namespace Kest::Agent {

/// What the command line asks for.
struct Options {
  std::string sliceFile;
  std::string driver = "sim";
  std::string faultFile;    // empty: none
  std::string driverState;  // empty: it ends with the process
  std::string control;      // empty: the default socket, if there is one; "none": none
  unsigned controlMode = 0660;
  std::string controlGroup;  // empty: the process's
  std::string trace;         // empty: as the environment says
  bool requireEnd = false;
  bool once = false;
  bool poll = false;
  bool verbose = false;
  bool supervise = false;

  /// Where the control socket is to be; none when there is to be none.
  std::optional<std::string> controlPath() const;
};

/// How the program ends.
enum class Exit : int {
  done = 0,
  notUp = 1,  // `--once`: a configured port or device did not come up
  usage = 2,  // the command line, the slice file or the driver cannot be used
};

/// The options, or the exit code after `--help`, `--version` or an error, which has been shown.
std::variant<Options, Exit> parseOptions(int argc, char const* const* argv);

}  // namespace Kest::Agent
