#include "test/simulation/Generator.h"

#include <deque>
#include <random>

#include "test/simulation/Stories.h"
#include "test/simulation/Values.h"

namespace Simulation {

namespace {

class Generator {
 public:
  explicit Generator(std::uint64_t seed) : random_(seed) {
    for (OpInfo const& info : allOps()) weights_.push_back(info.weight * taste());
  }

  /// The next event. Some come in stories, and a quarter of the others are plans.
  Event event() {
    if (!next_.empty()) {
      Event const next = next_.front();
      next_.pop_front();
      return next;
    }
    if (onceIn(30)) {
      tell(stories()[any(stories().size())]);
      return event();
    }
    Event made;
    if (onceIn(4)) {
      made.planner = static_cast<std::int8_t>(any(plannerCount));
      made.after = static_cast<std::uint8_t>(any(3));
      made.throws = onceIn(4);
    }
    made.op = anyOp(made.planner);
    auto const& arguments = infoOf(made.op).arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      made.arguments[i] = argument(*arguments[i], made, i);
    }
    if (!onceIn(3)) addSequel(made);
    return made;
  }

 private:
  void tell(Story const& story) {
    std::string const key = text(any(5));
    std::string const configObserver = text(any(configObserverCount));
    std::string const statusObserver =
        text(configObserverCount + any(observerCount - configObserverCount));
    for (std::string_view const line : story.lines) {
      std::string filled;
      for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] != '$') {
          filled += line[at];
          continue;
        }
        char const what = line[++at];
        if (what == 'K') filled += key;
        if (what == 'P') filled += configObserver;
        if (what == 'Q') filled += statusObserver;
        if (what == 'V') filled += text(any(4));
      }
      if (!line.empty()) next_.push_back(eventOf(filled));
    }
  }

  /// Adds events that show the effect of this one.
  void addSequel(Event const& event) {
    std::int32_t const key = event[event.op == Op::fault ? 1 : 0];
    auto const add = [&](Op op, std::array<std::int32_t, 5> arguments) {
      next_.push_back({.op = op, .arguments = arguments});
    };
    switch (event.op) {
      case Op::set:
        if (event.index(1) == devices) {
          add(Op::set,
              {event[0], static_cast<std::int32_t>(deviceStates), event[2], anyDeviceState(event)});
        }
        return;
      case Op::fault: {
        // In the order of the driver's operations.
        static constexpr std::int32_t concerned[] = {0, 0, 1, 3, 3, 3, 4};
        if (event[0] == 7) return add(Op::poll, {});
        if (event[0] == 0) return add(Op::set, {0, 0, key, static_cast<std::int32_t>(any(8))});
        return add(Op::notify, {0, concerned[event.index(0)], key});
      }
      case Op::flip:
      case Op::forget:
        return add(Op::poll, {});
      case Op::lose:
        return add(Op::notify, {0, 1, key});
      case Op::machineDrop:
        return add(Op::machine, {anyConfig(), 0, 1});
      default:
        return;
    }
  }

  unsigned any(std::size_t count) { return static_cast<unsigned>(random_() % count); }
  bool onceIn(unsigned count) { return any(count) == 0; }
  template <std::size_t N>
  std::int32_t anyOf(std::int32_t const (&values)[N]) {
    return values[any(N)];
  }

  unsigned taste() {
    static constexpr unsigned tastes[] = {1, 4, 4, 4, 12};
    return tastes[any(5)];
  }

  /// Observers and timers often do something that disturbs those after them.
  Op anyOp(int planner) {
    static constexpr Op disturbing[] = {
        Op::set,   Op::del,    Op::delAll,    Op::renew,       Op::drop,   Op::join,  Op::leave,
        Op::point, Op::config, Op::configDel, Op::machineDrop, Op::zombie, Op::active};
    static constexpr Op disturbingTimers[] = {Op::timer, Op::timerDrop, Op::clock, Op::clockDel,
                                              Op::machineDrop};
    if (planner >= static_cast<int>(observerCount) && onceIn(2))
      return disturbingTimers[any(std::size(disturbingTimers))];
    if (planner >= static_cast<int>(configObserverCount) && onceIn(3)) return Op::set;
    if (planner >= 0 && onceIn(2)) return disturbing[any(std::size(disturbing))];
    unsigned all = 0;
    for (unsigned const weight : weights_) all += weight;
    unsigned left = any(all);
    std::size_t chosen = 0;
    for (; left >= weights_[chosen]; ++chosen) left -= weights_[chosen];
    return allOps()[chosen].op;
  }

  /// The argument at that place; the earlier ones are set. Values that end the process or silence
  /// the machine are rarer than others.
  std::int32_t argument(Argument const& kind, Event const& event, std::size_t at) {
    if (&kind == &entityArgument) return anyEntity();
    if (&kind == &pointArgument) return anyPoint(event);
    if (&kind == &keyArgument) return anyKey();
    if (&kind == &collectionArgument && onceIn(8)) return 2;
    if (&kind == &valueArgument && isDeviceState(event)) return anyDeviceState(event);
    if (&kind == &resultArgument) return anyOf({11, 11, 11, 0, 19, 22, -1});
    if (&kind == &timesArgument) return onceIn(6) ? anyOf({12, 25, 40}) : anyOf({1, 1, 2, 3});
    if (&kind == &onArgument)
      return onceIn(event.planner >= 0 ? 2 : 6) ? 1 - usual(event) : usual(event);
    if (&kind == &microsecondsArgument) return static_cast<std::int32_t>(any(2500000));
    if ((event.op == Op::config || event.op == Op::machine) && at == 0) return anyConfig();
    return kind.low + static_cast<std::int32_t>(any(kind.count()));
  }

  std::int32_t anyEntity() { return anyOf({0, 0, 0, 0, 0, 0, 0, 1, 1, 1, onceIn(3) ? 2 : 0, 0}); }
  std::int32_t anyConfig() { return onceIn(16) ? 2 : anyOf({0, 0, 1}); }
  std::int32_t anyKey() {
    return static_cast<std::int32_t>(onceIn(30) ? any(keyCount) : any(onceIn(2) ? 5 : 2));
  }
  /// Mostly an entity of the place's type.
  std::int32_t anyPoint(Event const& event) {
    if (onceIn(8)) return static_cast<std::int32_t>(any(entityCount + 1));
    return event.index(0) < configObserverCount ? anyOf({0, 0, 1}) : anyOf({2, 2, 3});
  }
  std::int32_t anyDeviceState(Event const& event) {
    bool const inStatus = event.index(0) >= configCount;
    return onceIn(inStatus ? 2 : 20) ? anyOf({0, 3}) : anyOf({1, 2});
  }
  static bool isDeviceState(Event const& event) {
    return event.op != Op::sliceId && event[1] == static_cast<std::int32_t>(deviceStates);
  }
  /// Whether the event is usually `on`.
  static std::int32_t usual(Event const& event) {
    return event.op == Op::active || event.op == Op::machine || event.op == Op::reactor ? 1 : 0;
  }

  std::mt19937_64 random_;
  std::vector<unsigned> weights_;
  std::deque<Event> next_{{.op = Op::machine, .arguments = {0, 0, 1}}};
};

}  // namespace

std::vector<Event> eventsOf(std::uint64_t seed, std::size_t count) {
  Generator generator(seed);
  std::vector<Event> events;
  events.reserve(count);
  while (events.size() < count) events.push_back(generator.event());
  number(events);
  return events;
}

}  // namespace Simulation
