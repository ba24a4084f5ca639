#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Kest::Soak {

/// The agent as a process that polls, in a scratch directory of its own. What it writes to standard
/// error is read by a thread, which notes when each poll was told of: whoever loads the agent is
/// often late itself. A process that is still there at the end is killed.
class SoakedAgent {
 public:
  using Clock = std::chrono::steady_clock;

  /// @param preloaded a library that is loaded before all others, if any
  SoakedAgent(std::string const& program, std::string const& sliceFile,
              std::string const& preloaded = "");
  ~SoakedAgent();
  SoakedAgent(SoakedAgent const&) = delete;
  SoakedAgent& operator=(SoakedAgent const&) = delete;

  std::string socketPath() const { return directory_ + "/control.sock"; }

  /// When the polls began, as far as they have been told of.
  std::vector<Clock::time_point> polls() const;
  /// The next poll after `known` ones has begun. Throws when the agent ends, or when it does not
  /// come in a time that no working agent needs.
  void awaitPoll(std::size_t known) const;

  /// What it wrote to standard error besides its polls and handlers.
  std::string complaints() const;
  bool hasEnded() const;
  std::size_t residentKilobytes() const;

  /// Ends it by SIGTERM; returns its exit code, or minus the signal that ended it.
  int end();

 private:
  void readErrors(int fd);

  std::string directory_;
  pid_t pid_ = -1;
  mutable std::mutex mutex_;  // of what follows, but for the thread
  std::vector<Clock::time_point> polls_;
  std::string complaints_;
  bool hasEnded_ = false;
  std::thread reader_;
};

}  // namespace Kest::Soak
