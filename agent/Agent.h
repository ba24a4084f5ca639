#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "agent/process/ActivityLoop.h"
#include "agent/process/Console.h"
#include "agent/process/DriverLibrary.h"
#include "agent/process/Options.h"
#include "agent/show/StatusWatcher.h"
#include "agent/slice/RollOut.h"
#include "agent/slice/SliceFile.h"
#include "agent/slice/SliceFileReading.h"
#include "agent/verbs/RunningAgent.h"
#include "sm/KestSliceDmaSm.h"

namespace Kest::Agent {

class ControlServer;

/// The running agent: the two entities of a slice, the state machine between them, and the activity
/// that brings the configuration in line with the slice file.
class Agent {
 public:
  /// The driver must outlive the agent.
  Agent(Options options, Console console, DriverLibrary const& driver);
  ~Agent();
  Agent(Agent const&) = delete;
  Agent& operator=(Agent const&) = delete;

  /// Reads the slice file and opens the control socket, before `run`. Applies nothing yet.
  /// @throw Text::FileError, ControlSocketError
  void start();
  /// Runs until the agent ends; returns the exit code.
  int run();

  /// The loop that `run` runs; the process may add to it what else it waits for.
  ActivityLoop& loop() noexcept { return loop_; }

 private:
  using Done = std::function<void(Applied)>;

  void apply(std::string const& file, Slice wanted, RollOut::Decide decide, Done done);
  Applied applied(std::string const& file, std::size_t changes, std::size_t unchanged);
  void applySliceFile(Slice wanted, RollOut::Decide decide);
  void openControl();
  SliceEnd sliceEnd() const;
  void reload();
  void readOn();
  bool mayReload(Changes const& changes);
  void notReloaded(std::string const& why);
  void reloadIfWanted();
  void end(int signal);

  Options options_;
  Console console_;
  bool verbose_;
  ActivityLoop loop_;
  Mox::Ptr<Config> config_;
  Mox::Ptr<Status> status_;
  Mox::Ptr<Hardware::Kest::Slice::KestSliceDmaSm> sm_;
  Mox::Ptr<StatusWatcher> statusWatcher_;
  RollOut rollOut_;
  PciHandles handles_;
  std::unique_ptr<SliceFileReading> reading_;  // while the slice file is read again
  RunningAgent running_;
  std::unique_ptr<ControlServer> control_;
  Slice wanted_;  // between `start` and `run`
  bool reloadWanted_ = false;
  bool shown_ = false;
  int exitCode_ = 0;
};

}  // namespace Kest::Agent
