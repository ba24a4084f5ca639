#include "agent/Application.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Kest::Agent {

Application::Application(Mox::ActivityLoop& loop, Console& console, Mox::Ptr<Config> config,
                         bool verbose)
    : loop_(loop), console_(console), config_(std::move(config)), verbose_(verbose) {}

void Application::start(Changes changes, Work done) {
  pending_.assign(std::make_move_iterator(changes.steps.begin()),
                  std::make_move_iterator(changes.steps.end()));
  portsDone_ = 0;
  portsTotal_ = static_cast<std::size_t>(std::count_if(
      pending_.begin(), pending_.end(), [](Change const& change) { return change.createsPort; }));
  done_ = std::move(done);
  running_ = true;
  step();
}

void Application::abandon() {
  pending_.clear();
  running_ = false;
}

void Application::step() {
  if (!running_) return;
  if (pending_.empty()) {
    running_ = false;
    Work const done = std::move(done_);  // it may start on further changes
    done();
    return;
  }
  Change const change = std::move(pending_.front());
  pending_.pop_front();
  show(change);
  change.apply(*config_);
  if (change.createsPort) ++portsDone_;
  loop_.later([this] { step(); });
}

void Application::show(Change const& change) {
  if (verbose_) console_.line("config  " + change.text);
  console_.progress("ports", portsDone_, portsTotal_, change.text);
}

}  // namespace Kest::Agent
