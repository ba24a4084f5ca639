#include "agent/slice/RollOut.h"

#include <utility>

namespace Kest::Agent {

RollOut::RollOut(ActivityLoop& loop, Console& console, Mox::Ptr<Config> config, bool verbose)
    : loop_(loop), console_(console), config_(std::move(config)), verbose_(verbose) {}

void RollOut::start(Mox::Ptr<Config const> wanted, Decide decide, Done done) {
  comparison_ = std::make_unique<Comparison>(config_, std::move(wanted));
  decide_ = std::move(decide);
  done_ = std::move(done);
  later(&RollOut::compare);
  running_ = true;
}

void RollOut::abandon() {
  changes_ = {};
  running_ = false;
}

void RollOut::later(Work work) {
  loop_.later([this, work] {
    if (running_) (this->*work)();
  });
}

void RollOut::compare() {
  if (comparison_->goOn()) return later(&RollOut::compare);
  auto const comparison = std::move(comparison_);
  Decide const decide = std::move(decide_);
  if (decide(comparison->changes())) return begin(std::move(comparison->changes()));
  done_ = nullptr;
  running_ = false;
}

void RollOut::begin(Changes changes) {
  changes_ = std::move(changes);
  stepsTotal_ = changes_.steps.size();
  portsDone_ = 0;
  step();
}

void RollOut::step() {
  if (changes_.steps.empty()) {
    running_ = false;
    Done const done = std::move(done_);  // it may start on further changes
    return done(stepsTotal_, changes_.unchanged);
  }
  Change const change = std::move(changes_.steps.front());
  changes_.steps.pop_front();
  show(change);
  change.apply(*config_);
  if (change.createsPort) ++portsDone_;
  later(&RollOut::step);
}

void RollOut::show(Change const& change) {
  if (verbose_) console_.line("config  " + change.text);
  console_.progress("ports", portsDone_, changes_.portsSet, change.text);
}

}  // namespace Kest::Agent
