#include "test/simulation/RealWorld.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include "platform/mox/Log.h"
#include "platform/mox/Trace.h"

namespace Simulation {

namespace {

constexpr int deviceGoneSignal = 7;

void logLine(Mox::LogHandle const& message, Mox::String8 const& written) {
  DriverCalls::current().add(text("log ", message.severity(), " ", written.view()));
}

}  // namespace

RealWorld::RealWorld(std::optional<Op> without) : without_(without) {
  unsetenv("SIMULATION_VMID");
  std::signal(deviceGoneSignal, SIG_DFL);
  Hardware::Kest::Slice::INTF_ADD_RETRY_TIMEOUT_SECONDS = 60;
  Mox::logSinkIs(logLine);
  Mox::traceStreamIs(&traceStream_);
  Mox::traceSettingIs("KestSliceDma/");
  for (std::size_t i = 0; i < handles_.size(); ++i) {
    handles_[i] = new Counted<Fru::PciHam>(Mox::Name(handleNames[i]));
  }
  for (std::size_t i = 0; i < configs_.size(); ++i) {
    configs_[i] = new Counted<KestSliceDmaConfig>(Mox::Name(entityNames[i]));
  }
  for (std::size_t i = 0; i < statuses_.size(); ++i) {
    statuses_[i] = new Counted<KestSliceDmaStatus>(Mox::Name(entityNames[configCount + i]));
  }
  static constexpr char const* clockNames[] = {"clock0", "clock1", "clock2"};
  for (std::size_t i = 0; i < clocks_.size(); ++i) {
    clocks_[i] = new Counted<Mox::Clock>(Mox::Name(clockNames[i]));
  }
  Mox::activityManager()->clockIs(clocks_[0]);
}

RealWorld::~RealWorld() {
  Mox::activityManager()->clockIs(nullptr);
  Mox::logSinkIs(nullptr);
  Mox::traceStreamIs(nullptr);
  Mox::PtrInterface::threadSafePtrIs(false);
}

std::string RealWorld::leftOver() {
  std::string left;
  auto const look = [&](char const* kind, int live) {
    if (live != 0) left += text("left over: ", kind, ": ", live, "\n");
  };
  look("configurations", Counted<KestSliceDmaConfig>::live);
  look("statuses", Counted<KestSliceDmaStatus>::live);
  look("clocks", Counted<Mox::Clock>::live);
  look("handles", Counted<Fru::PciHam>::live);
  look("observers of configurations", Observer<KestSliceDmaConfig>::live);
  look("observers of statuses", Observer<KestSliceDmaStatus>::live);
  look("timers", Timer::live);
  return left;
}

void RealWorld::goOnAloud() {
  capture_.end();
  journal_.echoIs(true);
}

void RealWorld::take(Event const& event, std::vector<std::uint32_t> const& carriedOut) {
  carriedOut_ = &carriedOut;
  try {
    takeNow(event);
  } catch (Thrown const&) {
    line("threw");
  }
}

void RealWorld::takeNow(Event const& event) {
  if (event.op == without_) return;
  if (event.planner >= 0) {
    plans_.add(event);
  } else if (std::find(carriedOut_->begin(), carriedOut_->end(), event.id) != carriedOut_->end()) {
    carryOut(event);
  }
}

void RealWorld::told(unsigned place, std::string what) {
  if (place < observerCount) {
    line("observer ", place, " told: ", what);
  } else {
    line("timer ", place - observerCount, " ", what);
  }
  auto const plan = plans_.told(place);
  if (!plan) return;
  if (plan->op != Op::pass) takeNow(*plan);
  if (plan->throws) throw Thrown();
}

void RealWorld::apply(Effect effect) {
  switch (effect) {
    case Effect::none:
      return;
    case Effect::thrown:
      throw Thrown();
    case Effect::retry0:
      Hardware::Kest::Slice::INTF_ADD_RETRY_TIMEOUT_SECONDS = 0;
      return;
    case Effect::retry9:
      Hardware::Kest::Slice::INTF_ADD_RETRY_TIMEOUT_SECONDS = 9;
      return;
    case Effect::wallForward:
      return time_.wallClockJump(1000);
    case Effect::wallBack:
      return time_.wallClockJump(-1000);
  }
}

void RealWorld::carryOut(Event const& event) {
  if (isOfObserver(event.op)) return carryOutOnObserver(event);
  if (isOfDriver(event.op)) return driver_.carryOut(event);
  switch (event.op) {
    case Op::pass:
      time_.advance(event[0]);
      for (auto const& clock : clocks_) clock->dispatch();
      return;
    case Op::wall:
      return time_.wallClockJump(event[0]);
    case Op::retry:
      Hardware::Kest::Slice::INTF_ADD_RETRY_TIMEOUT_SECONDS = event[0];
      return;
    case Op::environment:
      event.flag(0) ? setenv("SIMULATION_VMID", "", 1) : unsetenv("SIMULATION_VMID");
      return;
    case Op::signal:
      std::signal(deviceGoneSignal, event.flag(0) ? SIG_IGN : SIG_DFL);
      return;
    case Op::timer:
      return newTimer(event.index(0), event.index(1),
                      Mox::now() + static_cast<double>(event[2]) / 1e6);
    case Op::timerDrop:
      timers_[event.index(0)] = nullptr;
      return;
    case Op::trace:
      return Mox::traceSettingIs(text("KestSliceDma/", traceLevels[event.index(0)].setting));
    case Op::threadSafe:
      return Mox::PtrInterface::threadSafePtrIs(event.flag(0));
    case Op::managerClock:
      return Mox::activityManager()->clockIs(clocks_[event.index(0)]);
    default:
      return event.op < Op::machine ? carryOutOnEntity(event) : carryOutOnMachine(event);
  }
}

void RealWorld::newTimer(unsigned timer, unsigned clock, double timeMin) {
  timers_[timer] = nullptr;
  timers_[timer] = new Timer(*this, observerCount + timer);
  timers_[timer]->notifierIs(clocks_[clock]);
  timers_[timer]->isRegisteredNotifieeIs(true);
  timers_[timer]->timeMinIs(timeMin);
}

void RealWorld::carryOutOnObserver(Event const& event) {
  unsigned const place = event.index(0);
  if (place < configObserverCount) {
    carryOutOn(configObservers_[place], event, place);
  } else {
    carryOutOn(statusObservers_[place - configObserverCount], event, place);
  }
}

template <class Entity>
void RealWorld::carryOutOn(Mox::Ptr<Observer<Entity>>& held, Event const& event, unsigned place) {
  switch (event.op) {
    case Op::renew:
      held = new Observer<Entity>(*this, place);
      held->notifierIs(entity(event.index(1)));
      held->isRegisteredNotifieeIs(true);
      return;
    case Op::drop:
      held = nullptr;
      return;
    case Op::point:
      if (held) held->notifierIs(entity(event.index(1)));
      return;
    default:
      if (held) held->isRegisteredNotifieeIs(event.op == Op::join);
      return;
  }
}

std::string RealWorld::differenceFrom(PlainState const& plain) {
  std::string found;
  for (unsigned i = 0; i < configCount; ++i) {
    found += differenceOf(*configs_[i], i, plain);
  }
  for (unsigned i = configCount; i < entityCount; ++i) {
    found += differenceOf(*statuses_[i - configCount], i, plain);
  }
  found += differenceOf(plain.machine, plain);
  for (unsigned i = 0; i < timerCount; ++i) {
    PlainTimer const& timer = plain.timers[1 + i];
    bool const same =
        timers_[i] ? timer.held && timers_[i]->timeMin() == timer.timeMin : !timer.held;
    if (!same) found += text("timer ", i, " waits for another time\n");
  }
  for (unsigned i = 0; i < clockCount; ++i) {
    double earliest = Mox::never;
    for (unsigned const timer : plain.listedTimers[i]) {
      PlainTimer const& waiting = plain.timers[timer];
      if (!waiting.zombie) earliest = std::min(earliest, waiting.timeMin);
    }
    if (clocks_[i]->timeMin() != earliest) found += text("clock ", i, " waits for another time\n");
  }
  if (!(driver_ == plain.driver)) found += "the driver is in another state\n";
  if (time_.microseconds() != plain.microseconds) found += "it is another time\n";
  if (Mox::ExpectationScope::depth() != 0) found += "a handler's scope is still open\n";
  return found;
}

}  // namespace Simulation
