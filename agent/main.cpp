#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "agent/Agent.h"
#include "agent/DriverLibrary.h"
#include "agent/Options.h"
#include "agent/SignOfLife.h"
#include "agent/SimulatedDriver.h"
#include "agent/Supervisor.h"
#include "agent/control/ControlServer.h"
#include "agent/slice/FileError.h"
#include "platform/mox/Activity.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Trace.h"

namespace {

using namespace Kest::Agent;

/// The end of a process that nobody foresaw, for lack of memory say. A signal, so that whoever
/// watches over it starts it again.
[[noreturn]] void abortWithALine() noexcept {
  char const* what = "an error without words";
  try {
    if (std::exception_ptr const error = std::current_exception()) std::rethrow_exception(error);
  } catch (std::exception const& error) {
    what = error.what();
  } catch (...) {  // NOLINT(bugprone-empty-catch): it has no words
  }
  // Not a stream's business: there may be no memory.
  dprintf(STDERR_FILENO, "kest-slice-agent: aborting: %s\n", what);
  std::abort();
}

/// Nothing is refused any more: what escapes from here was not foreseen.
int runToItsEnd(Agent& agent) noexcept {
  Mox::Ptr<Heartbeat> const heartbeat(new Heartbeat(Mox::activityManager()->clock()));
  int const exitCode = agent.run();
  heartbeat->notifierIs(nullptr);
  return exitCode;
}

int runAgent(Options const& options) {
  if (!options.trace.empty()) Mox::traceSettingIs(options.trace);
  DriverLibrary driver(options.driver);
  SimulatedDriver const simulated(driver);
  if (!options.driverState.empty()) simulated.stateFileIs(options.driverState);
  if (!options.faultFile.empty()) simulated.faultFileIs(options.faultFile);
  Agent agent(options, Console::standardOutput(), driver);
  agent.start();
  return runToItsEnd(agent);
}

int run(Options const& options) {
  if (!options.supervise) return runAgent(options);
  return Supervisor([&options] { return runAgent(options); }).run();
}

int refused(std::exception const& error) {
  std::cerr << "kest-slice-agent: " + std::string(error.what()) + "\n";
  return static_cast<int>(Exit::usage);
}

}  // namespace

int main(int argc, char** argv) {
  std::set_terminate(&abortWithALine);
  std::variant<Options, Exit> const options = parseOptions(argc, argv);
  if (Exit const* const exit = std::get_if<Exit>(&options)) return static_cast<int>(*exit);
  try {
    return run(std::get<Options>(options));
  } catch (DriverError const& error) {
    return refused(error);
  } catch (FileError const& error) {
    return refused(error);
  } catch (ControlSocketError const& error) {
    return refused(error);
  } catch (Mox::RangeException const& error) {  // the trace setting
    return refused(error);
  }
}
