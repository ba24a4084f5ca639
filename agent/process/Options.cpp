#include "agent/process/Options.h"

#include <CLI/CLI.hpp>
#include <charconv>

#include "agent/process/Version.h"
#include "agent/wire/Protocol.h"

namespace Kest::Agent {

namespace {

/// Makes a decimal number of octal digits.
std::string octalMode(std::string const& digits) {
  constexpr unsigned most = 0777;
  unsigned mode = 0;
  char const* const end = digits.data() + digits.size();
  auto const read = std::from_chars(digits.data(), end, mode, 8);
  if (read.ec == std::errc() && read.ptr == end && mode <= most) return std::to_string(mode);
  throw CLI::ValidationError("expected octal digits up to 777, found '" + digits + "'");
}

}  // namespace

std::optional<std::string> Options::controlPath() const {
  if (control == "none") return std::nullopt;
  if (!control.empty()) return control;
  // A single pass ends before anybody could ask; it must not get in the way of a running agent.
  if (once) return std::nullopt;
  return Wire::defaultSocketPath();
}

std::variant<Options, Exit> parseOptions(int argc, char const* const* argv) {
  Options options;
  CLI::App app(
      "Keeps a linecard slice's DMA driver in step with a slice file.\n"
      "SIGHUP reads the file again and applies what differs; SIGTERM and SIGINT end the agent.",
      "kest-slice-agent");
  app.add_option("SLICEFILE", options.sliceFile, "What the slice is to hold")->required();
  app.add_option("--driver", options.driver,
                 "Driver: 'sim' for the simulated one, or the path of a driver library")
      ->type_name("DRIVER")
      ->capture_default_str();
  app.add_option("--driver-faults", options.faultFile, "Fault file for the simulated driver")
      ->type_name("FILE");
  app.add_option("--driver-state", options.driverState,
                 "File in which the simulated driver keeps interfaces and devices, so that they "
                 "outlive the agent's process")
      ->type_name("FILE");
  app.add_option("--control", options.control,
                 "Control socket for kestctl, or 'none'; by default KEST_SLICE_AGENT_SOCKET, "
                 "/run/kest-slice-agent.sock for root, or kest-slice-agent.sock in "
                 "XDG_RUNTIME_DIR; with --once none unless it is given")
      ->type_name("PATH");
  app.add_option("--control-mode", options.controlMode,
                 "Mode of the control socket's file, in octal digits: who may connect, and so read "
                 "(default 0660)")
      ->type_name("MODE")
      ->transform(octalMode);
  app.add_option("--control-group", options.controlGroup,
                 "Group of the control socket's file, by name or number")
      ->type_name("GROUP");
  app.add_flag("--require-end", options.requireEnd,
               "Refuse a slice file whose last statement is not 'end'");
  app.add_flag("--once", options.once,
               "End after the file was applied; exit code 1 if a port or device did not come up");
  app.add_flag("--poll", options.poll,
               "Poll the devices' states once the file has been applied (mode polling)");
  app.add_flag("-v,--verbose", options.verbose,
               "Show every change on a terminal too, where only progress is shown otherwise");
  app.add_flag("--supervise", options.supervise,
               "Run the agent as a child process and start it again when a signal ended it or it "
               "gives no sign of life for 30 s");
  app.add_option("--trace", options.trace,
                 "Trace setting FACILITY/LEVELS[,...], as in 'KestSliceDma/0-2'; the default comes "
                 "from MOX_TRACE")
      ->type_name("SETTING");
  app.set_version_flag("--version", std::string("kest-slice-agent ") + version);
  app.footer(
      "Exit codes: 0 done, 1 a port or device did not come up (--once), 2 the command line, the "
      "slice file or the driver cannot be used; ended by a signal before --once was done: 128 and "
      "its number; anything that nobody foresaw: SIGABRT.\nEnvironment: KEST_SLICE_AGENT_SOCKET, "
      "MOX_TRACE, NO_COLOR; KEST_LAST_END, which tells a run that is started again what ended the "
      "last one; NOTIFY_SOCKET and WATCHDOG_USEC, from a service manager.");
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& outcome) {
    return app.exit(outcome) == 0 ? Exit::done : Exit::usage;
  }
  return options;
}

}  // namespace Kest::Agent
