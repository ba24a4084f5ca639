#include <exception>
#include <iostream>

#include "agent/Agent.h"
#include "agent/DriverLibrary.h"
#include "agent/Options.h"
#include "agent/SignOfLife.h"
#include "agent/SimulatedDriver.h"
#include "agent/Supervisor.h"
#include "agent/slice/FileError.h"
#include "platform/mox/Activity.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Trace.h"

namespace {

using namespace Kest::Agent;

int runAgent(Options const& options) {
  if (!options.trace.empty()) Mox::traceSettingIs(options.trace);
  DriverLibrary driver(options.driver);
  SimulatedDriver const simulated(driver);
  if (!options.driverState.empty()) simulated.stateFileIs(options.driverState);
  if (!options.faultFile.empty()) simulated.faultFileIs(options.faultFile);
  Agent agent(options, Console::standardOutput(), driver);
  Mox::Ptr<Heartbeat> const heartbeat(new Heartbeat(Mox::activityManager()->clock()));
  int const exitCode = agent.run();
  heartbeat->notifierIs(nullptr);
  return exitCode;
}

int run(Options const& options) {
  if (!options.supervise) return runAgent(options);
  return Supervisor([&options] { return runAgent(options); }).run();
}

}  // namespace

int main(int argc, char** argv) {
  std::variant<Options, Exit> const options = parseOptions(argc, argv);
  if (Exit const* const exit = std::get_if<Exit>(&options)) return static_cast<int>(*exit);
  try {
    return run(std::get<Options>(options));
  } catch (std::exception const& error) {
    std::cerr << "kest-slice-agent: " << error.what() << '\n';
    return static_cast<int>(Exit::usage);
  }
}
