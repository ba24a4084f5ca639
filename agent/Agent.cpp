#include "agent/Agent.h"

#include <csignal>
#include <utility>

#include "agent/FileError.h"
#include "agent/StatusReport.h"
#include "platform/mox/Activity.h"

namespace Kest::Agent {

Agent::Agent(Options options, Console console)
    : options_(std::move(options)),
      console_(console),
      verbose_(options_.verbose || !console_.terminal()),
      loop_(Mox::activityManager()->clock()),
      config_(new Config("config")),
      status_(new Status("status")),
      sm_(Hardware::Kest::Slice::kestSliceDmaSmFactory(config_, status_)),
      statusWatcher_(new StatusWatcher(status_,
                                       [this](std::string const& line) {
                                         if (verbose_) console_.line("status  " + line);
                                       })),
      application_(loop_, console_, config_, verbose_) {
  loop_.signalIs(SIGHUP, [this] { reload(); });
  for (int const signal : {SIGTERM, SIGINT}) {
    loop_.signalIs(signal, [this, signal] { end(signal); });
  }
}

Agent::~Agent() {
  statusWatcher_->notifierIs(nullptr);
}

int Agent::run() {
  apply(readSliceFile(options_.sliceFile));
  loop_.run();
  return exitCode_;
}

void Agent::apply(Slice wanted) {
  Changes changes = changesBetween(*config_, *wanted.config);
  std::size_t const count = changes.steps.size();
  std::size_t const unchanged = changes.unchanged;
  // Devices that go still refer to the old handles; what refers to a handle keeps it.
  wanted.handles.succeed(handles_);
  handles_ = std::move(wanted.handles);
  application_.start(std::move(changes), [this, count, unchanged] { applied(count, unchanged); });
}

void Agent::applied(std::size_t changes, std::size_t unchanged) {
  console_.line(options_.sliceFile + ": announced " + std::to_string(changes) +
                (changes == 1 ? " change, " : " changes, ") + std::to_string(unchanged) +
                " unchanged entries left alone");
  // As plain lines, what changed has been told already when the file is read again.
  if (console_.terminal() || !shown_) showStatus(console_, *config_, *status_);
  shown_ = true;
  std::vector<std::string> const missing = notUp(*config_, *status_);
  for (std::string const& what : missing) console_.line(console_.bad("not up: " + what));
  if (options_.once) {
    exitCode_ = static_cast<int>(missing.empty() ? Exit::done : Exit::notUp);
    loop_.stop();
  } else if (std::exchange(reloadWanted_, false)) {
    reload();
  }
}

/// A file that is refused changes nothing. While changes are being applied the file waits: a step
/// that belongs to one already taken must not get lost.
void Agent::reload() {
  if (application_.isRunning()) {
    reloadWanted_ = true;
    return;
  }
  try {
    apply(readSliceFile(options_.sliceFile));
  } catch (FileError const& refused) {
    console_.line(std::string("not reloaded: ") + refused.what());
  }
}

void Agent::end(int signal) {
  console_.line(std::string("ended by ") + (signal == SIGTERM ? "SIGTERM" : "SIGINT"));
  constexpr int signalledExit = 128;
  if (options_.once) exitCode_ = signalledExit + signal;
  application_.abandon();
  loop_.stop();
}

}  // namespace Kest::Agent
