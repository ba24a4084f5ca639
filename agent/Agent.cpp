#include "agent/Agent.h"

#include <csignal>
#include <utility>

#include "agent/access/Collections.h"
#include "agent/control/ControlServer.h"
#include "agent/process/RunReason.h"
#include "agent/rules/ChangeRules.h"
#include "agent/show/StatusReport.h"
#include "platform/mox/Activity.h"

namespace Kest::Agent {

namespace {

bool anyChanges(Changes const& /*changes*/) {
  return true;
}

}  // namespace

Agent::Agent(Options options, Console console, DriverLibrary const& driver)
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
      rollOut_(loop_, console_, config_, verbose_),
      running_{config_,
               status_,
               sm_,
               driver,
               handles_,
               [this] { return rollOut_.isRunning(); },
               [this](std::string const& file, Slice slice, Done done) {
                 apply(file, std::move(slice), anyChanges, std::move(done));
               }} {
  loop_.signalIs(SIGHUP, [this] { reload(); });
  for (int const signal : {SIGTERM, SIGINT}) {
    loop_.signalIs(signal, [this, signal] { end(signal); });
  }
}

Agent::~Agent() {
  statusWatcher_->notifierIs(nullptr);
}

void Agent::start() {
  wanted_ = readSliceFile(options_.sliceFile, sliceEnd());
  openControl();
}

int Agent::run() {
  std::string const reason = runReason(options_);
  if (!reason.empty()) console_.line(reason);
  applySliceFile(std::exchange(wanted_, {}), anyChanges);
  loop_.run();
  return exitCode_;
}

/// Comes before anything is applied: without its socket the agent does not start.
void Agent::openControl() {
  std::optional<std::string> const path = options_.controlPath();
  if (path) {
    control_ = std::make_unique<ControlServer>(
        loop_, *path, running_, SocketAccess{options_.controlMode, options_.controlGroup});
  } else if (options_.control.empty() && !options_.once) {
    console_.line("no control socket: --control names one, where XDG_RUNTIME_DIR is not set");
  }
}

void Agent::applySliceFile(Slice wanted, RollOut::Decide decide) {
  auto done = [this](Applied const& outcome) {
    if (options_.poll) sm_->modeIs(Hardware::Kest::SmMode::smModePolling_);
    if (options_.once) {
      exitCode_ = static_cast<int>(outcome.notUp.empty() ? Exit::done : Exit::notUp);
      loop_.stop();
    }
  };
  apply(options_.sliceFile, std::move(wanted), std::move(decide), std::move(done));
}

/// No other slice may be being applied. Devices that are removed still refer to the old handles,
/// and keep them.
void Agent::apply(std::string const& file, Slice wanted, RollOut::Decide decide, Done done) {
  wanted.handles.enterTree();
  auto const handles = std::make_shared<PciHandles>(std::move(wanted.handles));
  rollOut_.start(
      wanted.config,
      [this, handles, decide = std::move(decide)](Changes const& changes) {
        if (!decide(changes)) return false;
        handles->succeed(handles_);
        handles_ = std::move(*handles);
        return true;
      },
      [this, file, done = std::move(done)](std::size_t changes, std::size_t unchanged) {
        done(applied(file, changes, unchanged));
        if (!options_.once) reloadIfWanted();
      });
}

Applied Agent::applied(std::string const& file, std::size_t changes, std::size_t unchanged) {
  console_.line(file + ": announced " + std::to_string(changes) +
                (changes == 1 ? " change, " : " changes, ") + std::to_string(unchanged) +
                " unchanged entries left alone");
  // On plain lines, a reload has already shown what changed.
  if (console_.terminal() || !shown_) showStatus(console_, *config_, *status_);
  shown_ = true;
  std::vector<std::string> missing = notUp(*config_, *status_);
  for (std::string const& what : missing)
    console_.line(console_.marked("not up: " + what, Text::Mark::bad));
  return {changes, unchanged, std::move(missing)};
}

SliceEnd Agent::sliceEnd() const {
  return options_.requireEnd ? SliceEnd::required : SliceEnd::optional;
}

/// A refused file changes nothing. A reload waits while changes are being applied: steps that
/// belong together must all be taken.
void Agent::reload() {
  if (reading_ || rollOut_.isRunning()) {
    reloadWanted_ = true;
    return;
  }
  reading_ = std::make_unique<SliceFileReading>(options_.sliceFile, sliceEnd());
  readOn();
}

void Agent::readOn() {
  if (!reading_) return;
  try {
    if (reading_->goOn()) return loop_.later([this] { readOn(); });
    Slice wanted = std::exchange(reading_, nullptr)->slice();
    if (rollOut_.isRunning()) {  // a client was faster
      reloadWanted_ = true;
      return;
    }
    checkApply(*wanted.config, *config_, *status_);
    applySliceFile(std::move(wanted),
                   [this](Changes const& changes) { return mayReload(changes); });
  } catch (std::exception const& refused) {
    reading_ = nullptr;
    notReloaded(refused.what());
  }
}

/// Refuses a file that removes most ports: it may have been cut off.
bool Agent::mayReload(Changes const& changes) {
  constexpr std::size_t fewPorts = 4;
  auto const& ports = collectionOf<Config::SwitchPorts>(*config_);
  if (changes.portsGone <= fewPorts || changes.portsGone <= ports.count() / 2) return true;
  notReloaded(options_.sliceFile + " would remove " + std::to_string(changes.portsGone) + " of " +
              std::to_string(ports.count()) + " ports: if that is meant, use kestctl apply");
  return false;
}

void Agent::notReloaded(std::string const& why) {
  console_.line("not reloaded: " + why);
  loop_.later([this] { reloadIfWanted(); });
}

void Agent::reloadIfWanted() {
  if (std::exchange(reloadWanted_, false)) reload();
}

/// A terminal and a supervisor may both send the signal: further ones are ignored.
void Agent::end(int signal) {
  for (int const another : {SIGTERM, SIGINT}) loop_.signalIs(another, [] {});
  console_.line(std::string("ended by ") + (signal == SIGTERM ? "SIGTERM" : "SIGINT"));
  constexpr int signalledExit = 128;
  if (options_.once) exitCode_ = signalledExit + signal;
  reading_ = nullptr;
  rollOut_.abandon();
  loop_.stop();
}

}  // namespace Kest::Agent
