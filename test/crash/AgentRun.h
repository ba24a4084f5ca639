#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace Kest::Crash {

/// The content of a file; none when there is no such file.
std::optional<std::string> content(std::filesystem::path const& file);

/// The driver's state that a file holds, as a document, or why it holds none; none when there is no
/// such file.
std::optional<std::string> stateIn(std::filesystem::path const& file);

/// Replaces a file's content; none removes the file.
void contentIs(std::filesystem::path const& file, std::optional<std::string> const& text);

/// How a run of the agent ended and what it showed.
struct Outcome {
  int exitCode = 0;  ///< or minus the signal that ended it
  std::string output;
  std::string errors;
  std::optional<std::string> state;  ///< of the driver, as its file has it

  bool operator==(Outcome const&) const = default;
};

/// Runs the real agent over one slice file. The driver's state is kept in a directory from run to
/// run. Every run applies the slice file, prints the status and ends. A run that is killed leaves
/// its control socket behind.
class AgentRuns {
 public:
  AgentRuns(std::string agent, std::string hooks, std::string sliceFile,
            std::filesystem::path directory);

  /// @param killAt the moment of `Hooks.cpp`; 0: none
  Outcome run(unsigned killAt) const;

  std::filesystem::path stateFile() const { return directory_ / "state.json"; }
  /// Left by a run that is killed while it writes.
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
