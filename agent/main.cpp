#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>

#include "agent/Agent.h"
#include "agent/control/ControlServer.h"
#include "agent/process/DriverLibrary.h"
#include "agent/process/Options.h"
#include "agent/process/ServiceManager.h"
#include "agent/process/SignOfLife.h"
#include "agent/process/SimulatedDriver.h"
#include "agent/process/StandardStreams.h"
#include "agent/process/Supervisor.h"
#include "platform/mox/Activity.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Trace.h"
#include "text/FileError.h"

namespace {

using namespace Kest::Agent;

/// Ends the process after an error that nobody foresaw, such as a lack of memory: with one line,
/// and by a signal, so that its supervisor restarts it.
[[noreturn]] void abortWithALine() noexcept {
  char const* what = "an error without words";
  try {
    if (std::exception_ptr const error = std::current_exception()) std::rethrow_exception(error);
  } catch (std::exception const& error) {
    what = error.what();
  } catch (...) {  // NOLINT(bugprone-empty-catch): it has no message
  }
  // Without a stream: there may be no memory.
  std::array<char, 1024> line{};
  std::snprintf(line.data(), line.size() - 1, "kest-slice-agent: aborting: %s", what);
  writeAtOnce(STDERR_FILENO, outputKindOf(STDERR_FILENO), std::strcat(line.data(), "\n"));
  std::abort();
}

/// From here on nothing is refused: an exception that escapes ends the process.
int runToItsEnd(Agent& agent, StandardStreams& streams) noexcept {
  streams.loopIs(&agent.loop());
  // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new): as above
  Mox::Ptr<Heartbeat> const heartbeat(new Heartbeat(Mox::activityManager()->clock()));
  int const exitCode = agent.run();
  heartbeat->notifierIs(nullptr);
  streams.loopIs(nullptr);
  return exitCode;
}

int runAgent(Options const& options, StandardStreams& streams) {
  if (!options.trace.empty()) Mox::traceSettingIs(options.trace);
  DriverLibrary driver(options.driver);
  SimulatedDriver const simulated(driver);
  if (!options.driverState.empty()) simulated.stateFileIs(options.driverState);
  if (!options.faultFile.empty()) simulated.faultFileIs(options.faultFile);
  Agent agent(options, Console::standardOutput(), driver);
  agent.start();
  ServiceManager const manager;
  manager.isTold("READY=1");
  if (!options.supervise) manager.isToldOfLife();
  return runToItsEnd(agent, streams);
}

int supervise(Options const& options, StandardStreams& streams) {
  return Supervisor([&] {
           streams.forget();  // the supervisor's own text
           return runAgent(options, streams);
         })
      .run();
}

int refused(std::exception const& error) {
  std::cerr << "kest-slice-agent: " + std::string(error.what()) + "\n";
  return static_cast<int>(Exit::usage);
}

/// The process's exit code.
int run(Options const& options, StandardStreams& streams) {
  try {
    return options.supervise ? supervise(options, streams) : runAgent(options, streams);
  } catch (DriverError const& error) {
    return refused(error);
  } catch (Text::FileError const& error) {
    return refused(error);
  } catch (ControlSocketError const& error) {
    return refused(error);
  } catch (Mox::RangeException const& error) {  // the trace setting
    return refused(error);
  }
}

/// How long to wait for a slow reader at the end. After a signal the process ends within a second;
/// a single pass that is done has an outcome to tell.
std::chrono::milliseconds patience(Options const& options, int exitCode) {
  using namespace std::chrono_literals;
  bool const isOutcome = options.once && exitCode <= static_cast<int>(Exit::notUp);
  return isOutcome ? 5s : 500ms;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what escapes is an end with a line
int main(int argc, char** argv) {
  std::set_terminate(&abortWithALine);
  std::variant<Options, Exit> const parsed = parseOptions(argc, argv);
  if (Exit const* const exit = std::get_if<Exit>(&parsed)) return static_cast<int>(*exit);
  auto const& options = std::get<Options>(parsed);
  StandardStreams streams;
  int const exitCode = run(options, streams);
  streams.drain(patience(options, exitCode));
  return exitCode;
}
