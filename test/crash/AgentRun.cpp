#include "test/crash/AgentRun.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>
#include <vector>

#include "driver/sim/StateText.h"
#include "platform/mox/RangeException.h"
#include "test/crash/Hooks.h"

namespace Kest::Crash {

namespace {

int checked(int result, char const* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

bool becomesOutput(char const* file, int fd) {
  int const opened = open(file, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  return opened >= 0 && dup2(opened, fd) >= 0;
}

/// The sanitizers would rather not have a library before their own.
std::string sanitizerOptions() {
  char const* const given = std::getenv("ASAN_OPTIONS");
  return (given == nullptr ? "" : std::string(given) + ":") + "verify_asan_link_order=0";
}

}  // namespace

std::optional<std::string> content(std::filesystem::path const& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(in), {});
}

std::optional<std::string> stateIn(std::filesystem::path const& file) {
  namespace Sim = Hardware::Kest::Sim;
  std::optional<std::string> const text = content(file);
  if (!text) return std::nullopt;
  try {
    return Sim::stateText(Sim::readState(*text, file.filename().string()));
  } catch (Mox::RangeException const& refused) {
    return refused.what();
  }
}

void contentIs(std::filesystem::path const& file, std::optional<std::string> const& text) {
  std::filesystem::remove(file);
  if (text) std::ofstream(file, std::ios::binary) << *text;
}

AgentRuns::AgentRuns(std::string agent, std::string hooks, std::string sliceFile,
                     std::filesystem::path directory)
    : agent_(std::move(agent)),
      hooks_(std::move(hooks)),
      sliceFile_(std::move(sliceFile)),
      directory_(std::move(directory)) {}

Outcome AgentRuns::run(unsigned killAt) const {
  contentIs(driverState(), std::nullopt);
  pid_t const pid = checked(fork(), "fork");
  if (pid == 0) become(killAt);
  int status = 0;
  checked(waitpid(pid, &status, 0), "waitpid");
  return {WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status),
          content(directory_ / "output").value_or(""), content(directory_ / "errors").value_or(""),
          stateIn(stateFile())};
}

/// In the new process.
void AgentRuns::become(unsigned killAt) const {
  std::vector<std::string> arguments = {agent_,           "--once",     "--control",
                                        "control.sock",   "--driver",   hooks_,
                                        "--driver-state", "state.json", sliceFile_};
  std::vector<std::string> variables = {
      "LD_PRELOAD=" + hooks_, "ASAN_OPTIONS=" + sanitizerOptions(),
      std::string(killAtVariable) + "=" + std::to_string(killAt),
      std::string(driverStateVariable) + "=" + driverState().string()};
  auto const pointers = [](std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (std::string& text : texts) all.push_back(text.data());
    all.push_back(nullptr);
    return all;
  };
  if (chdir(directory_.c_str()) == 0 && becomesOutput("output", STDOUT_FILENO) &&
      becomesOutput("errors", STDERR_FILENO)) {
    execve(agent_.c_str(), pointers(arguments).data(), pointers(variables).data());
  }
  _exit(127);
}

}  // namespace Kest::Crash
