#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <utility>

#include "agent/control/ControlServer.h"
#include "agent/show/Differences.h"
#include "agent/show/StatusReport.h"
#include "agent/slice/RollOut.h"
#include "platform/mox/Trace.h"
#include "test/fuzz/Machine.h"
#include "test/support/Files.h"

namespace Fuzz {

/// An agent as clients see it, while time stands still. It serves its control socket and applies
/// one step of a slice a round. It lives from input to input; `reset` brings it back to its
/// beginning.
class FuzzedAgent {
 public:
  FuzzedAgent() {
    Mox::traceStreamIs(&nowhere_);
    reset();
  }

  void reset() {
    served_.sm = nullptr;  // before what it observes changes
    handles_ = {};
    clear(*config_);
    clear(*status_);
    config_->sliceIdIs("");
    Mox::traceSettingIs("*/");
    Hardware::Kest::Sim::simDriver().reset();
    served_.sm = Hardware::Kest::Slice::kestSliceDmaSmFactory(config_, status_);
  }

  std::string socket() const { return folder_.file("s"); }
  void round() { loop_.runOnce(0); }
  std::size_t connections() const { return server_.connections(); }
  bool isApplying() const { return rollOut_.isRunning(); }
  /// Whether configuration, status and driver agree.
  bool isClean() const {
    Kest::Agent::DriverView const driver(driver_);
    auto const agree = [&](Kest::Agent::OrderedKeys names, auto differences) {
      while (names.gather()) {
      }
      bool all = true;
      while (auto const name = names.take()) {
        all = all && differences(*config_, *status_, driver, *name).empty();
      }
      return all;
    };
    return agree(Kest::Agent::deviceNames(config_, status_), &Kest::Agent::deviceDifferences) &&
           agree(Kest::Agent::portNames(config_, status_, driver), &Kest::Agent::portDifferences);
  }

 private:
  using Slice = Kest::Agent::Slice;
  using Applied = Kest::Agent::Applied;

  static void clear(auto& entity) {
    entity.forEachCollection([](auto& collection) { collection.delAll(); });
  }

  void apply(Slice wanted, std::function<void(Applied)> done) {
    wanted.handles.enterTree();
    wanted.handles.succeed(handles_);
    handles_ = std::move(wanted.handles);
    rollOut_.start(
        wanted.config, [](Kest::Agent::Changes const&) { return true; },
        [this, done = std::move(done)](std::size_t announced, std::size_t unchanged) {
          done({announced, unchanged, Kest::Agent::notUp(*config_, *status_)});
        });
  }

  Support::TempFolder folder_;
  std::ostream nowhere_{nullptr};
  Kest::Agent::Console console_{nowhere_, false, false};
  Kest::Agent::ActivityLoop loop_{nullptr};
  Kest::Agent::DriverLibrary driver_{"sim"};
  Mox::Ptr<Machine::Config> config_{new Machine::Config("config")};
  Mox::Ptr<Machine::Status> status_{new Machine::Status("status")};
  Kest::Agent::PciHandles handles_;
  Kest::Agent::RollOut rollOut_{loop_, console_, config_, false};
  Kest::Agent::RunningAgent served_{config_,
                                    status_,
                                    nullptr,
                                    driver_,
                                    handles_,
                                    [this] { return isApplying(); },
                                    [this](std::string const&, Slice slice, auto done) {
                                      apply(std::move(slice), std::move(done));
                                    }};
  Kest::Agent::ControlServer server_{loop_, socket(), served_};
};

}  // namespace Fuzz
