#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "test/support/Files.h"

namespace Kest::Soak {

/// Lets this process have as many descriptors as it may: it needs one for each client. The agent
/// raises its own limit.
void raiseDescriptorLimit();

/// The agent as a process that polls, in a temporary folder. A thread reads what the agent writes
/// to standard error and notes the time of each poll there, because whoever loads the agent is
/// often late itself. An agent that still runs at the end is killed.
class SoakedAgent {
 public:
  using Clock = std::chrono::steady_clock;
  using Milliseconds = std::chrono::duration<double, std::milli>;

  /// @param preloaded a library that is loaded before all others, if any
  SoakedAgent(std::string const& program, std::string const& sliceFile,
              std::string const& preloaded = "");
  ~SoakedAgent();
  SoakedAgent(SoakedAgent const&) = delete;
  SoakedAgent& operator=(SoakedAgent const&) = delete;

  std::string socketPath() const { return folder_.file("control.sock"); }

  /// How many polls have been told of.
  std::size_t polls() const;
  /// The next poll after `known` ones has begun. Throws when the agent ends, or when it does not
  /// come in a time that no working agent needs.
  void awaitPoll(std::size_t known) const;

  /// By how much a poll came later than a period after the last one, at worst, from the poll of
  /// that number on.
  Milliseconds worstLateness(std::size_t from) const;

  /// What it wrote to standard error besides its polls and handlers.
  std::string complaints() const;
  bool hasEnded() const;
  std::size_t residentKilobytes() const;

  /// Ends it by SIGTERM; returns its exit code, or minus the signal that ended it.
  int end();

 private:
  void readErrors(int fd);

  Support::TempFolder folder_;
  pid_t pid_ = -1;
  mutable std::mutex mutex_;  // of what follows, but for the thread
  std::vector<Clock::time_point> polls_;
  std::string complaints_;
  bool hasEnded_ = false;
  std::thread reader_;
};

}  // namespace Kest::Soak
