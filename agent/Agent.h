#pragma once

#include "agent/Application.h"
#include "agent/Console.h"
#include "agent/Options.h"
#include "agent/SliceFile.h"
#include "agent/StatusWatcher.h"
#include "platform/mox/ActivityLoop.h"
#include "sm/KestSliceDmaSm.h"

namespace Kest::Agent {

/// The running agent: the two entities of a slice, the state machine between them, and the activity
/// that brings the configuration in line with the slice file.
class Agent {
 public:
  Agent(Options options, Console console);
  ~Agent();
  Agent(Agent const&) = delete;
  Agent& operator=(Agent const&) = delete;

  /// Runs to the end; returns the process's exit code. `FileError` when the slice file is bad at
  /// the start: then nothing has been applied.
  int run();

 private:
  void apply(Slice wanted);
  void applied(std::size_t changes, std::size_t unchanged);
  void reload();
  void end(int signal);

  Options options_;
  Console console_;
  bool verbose_;
  Mox::ActivityLoop loop_;
  Mox::Ptr<Config> config_;
  Mox::Ptr<Status> status_;
  Mox::Ptr<Hardware::Kest::Slice::KestSliceDmaSm> sm_;
  Mox::Ptr<StatusWatcher> statusWatcher_;
  Application application_;
  PciHandles handles_;
  bool reloadWanted_ = false;
  bool shown_ = false;
  int exitCode_ = 0;
};

}  // namespace Kest::Agent
