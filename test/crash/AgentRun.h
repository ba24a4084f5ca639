#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace Kest::Crash {

/// Whole content of a file; none when there is no such file.
std::optional<std::string> content(std::filesystem::path const& file);

/// The driver's state that a file holds, as a document, or why it holds none; none when there is no
/// such file.
std::optional<std::string> stateIn(std::filesystem::path const& file);

/// Puts content into a file; none: there is no such file from now on.
void contentIs(std::filesystem::path const& file, std::optional<std::string> const& text);

/// How a run of the agent ended and what it showed.
struct Outcome {
  int exitCode = 0;  ///< or minus the signal that ended it
  std::string output;
  std::string errors;
  std::optional<std::string> state;  ///< of the driver, as its file has it

  bool operator==(Outcome const&) const = default;
};

/// Runs the real agent over one slice file, with the driver's state kept in a directory from run to
/// run. Every run applies the slice file, shows the status on its output and ends. It has a control
/// socket, which one that is killed leaves behind.
class AgentRuns {
 public:
  AgentRuns(std::string agent, std::string hooks, std::string sliceFile,
            std::filesystem::path directory);

  /// @param killAt the moment of `Hooks.cpp`; 0: none
  Outcome run(unsigned killAt) const;

  std::filesystem::path stateFile() const { return directory_ / "state.json"; }
  /// What a run that is killed while it writes leaves behind.
  std::filesystem::path unfinishedStateFile() const { return directory_ / "state.json.tmp"; }
  /// See `driverStateVariable`.
  std::filesystem::path driverState() const { return directory_ / "driver-state.json"; }

 private:
  [[noreturn]] void become(unsigned killAt) const;

  std::string agent_;
  std::string hooks_;
  std::string sliceFile_;
  std::filesystem::path directory_;
};

}  // namespace Kest::Crash
