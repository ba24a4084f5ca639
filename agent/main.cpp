#include <exception>
#include <iostream>

#include "agent/Agent.h"
#include "agent/DriverLibrary.h"
#include "agent/FileError.h"
#include "agent/Options.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Trace.h"

namespace {

using namespace Kest::Agent;

int runAgent(Options const& options) {
  if (!options.trace.empty()) Mox::traceSettingIs(options.trace);
  DriverLibrary driver(options.driver);
  if (!options.faultFile.empty()) driver.faultFileIs(options.faultFile);
  return Agent(options, Console::standardOutput()).run();
}

}  // namespace

int main(int argc, char** argv) {
  std::variant<Options, Exit> const options = parseOptions(argc, argv);
  if (Exit const* const exit = std::get_if<Exit>(&options)) return static_cast<int>(*exit);
  try {
    return runAgent(std::get<Options>(options));
  } catch (std::exception const& error) {
    std::cerr << "kest-slice-agent: " << error.what() << '\n';
    return static_cast<int>(Exit::usage);
  }
}
