#include "test/simulation/Generator.h"

#include <optional>
#include <random>
#include <utility>

#include "test/simulation/Values.h"

namespace Simulation {

namespace {

constexpr Event poll{.op = Op::poll};

class Generator {
 public:
  explicit Generator(std::uint64_t seed) : random_(seed) {
    for (OpInfo const& info : allOps()) weights_.push_back(info.weight * taste());
  }

  /// Events come one after the other; a fifth of them are plans.
  Event event() {
    if (next_) return *std::exchange(next_, std::nullopt);
    Event event;
    if (onceIn(5)) {
      event.planner = static_cast<std::int8_t>(any(plannerCount));
      event.after = static_cast<std::uint8_t>(any(3));
      event.throws = onceIn(4);
    }
    event.op = anyOp(event.planner);
    auto const& arguments = infoOf(event.op).arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      event.arguments[i] = argument(*arguments[i], event, i);
    }
    if (!onceIn(3)) next_ = sequel(event);
    return event;
  }

 private:
  /// What shows the event's effect.
  std::optional<Event> sequel(Event const& event) {
    std::int32_t const key = event[event.op == Op::fault ? 1 : 0];
    switch (event.op) {
      case Op::set: {
        bool const isDevice = event.index(1) == devices;
        if (!isDevice) return std::nullopt;
        Event state = event;
        state.planner = -1;
        state.throws = false;
        state.arguments[1] = static_cast<std::int32_t>(deviceStates);
        state.arguments[3] = anyDeviceState(state);
        return state;
      }
      case Op::fault: {
        // In the order of the driver's operations; the last is the poll's.
        static constexpr std::int32_t concerned[] = {0, 0, 1, 3, 3, 3, 4};
        if (event[0] == 7) return poll;
        return Event{.op = Op::notify, .arguments = {0, concerned[event.index(0)], key, 0}};
      }
      case Op::flip:
      case Op::forget:
        return poll;
      case Op::lose:
        return Event{.op = Op::notify, .arguments = {0, 1, key, 0}};
      default:
        return std::nullopt;
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

  /// What an observer or a timer does is often what disturbs those that come behind it.
  Op anyOp(int planner) {
    static constexpr Op disturbing[] = {Op::set,    Op::del,       Op::delAll, Op::renew,
                                        Op::drop,   Op::join,      Op::leave,  Op::point,
                                        Op::config, Op::configDel, Op::machine};
    static constexpr Op disturbingTimers[] = {Op::timer, Op::timerDrop, Op::clock, Op::clockDel,
                                              Op::machineDrop};
    if (planner >= static_cast<int>(observerCount) && onceIn(2)) return disturbingTimers[any(5)];
    if (planner >= 0 && onceIn(2)) return disturbing[any(11)];
    unsigned all = 0;
    for (unsigned const weight : weights_) all += weight;
    unsigned left = any(all);
    std::size_t chosen = 0;
    for (; left >= weights_[chosen]; ++chosen) left -= weights_[chosen];
    return allOps()[chosen].op;
  }

  /// The argument behind those that `event` has already. Most values come as they come; of those
  /// that end the process, or silence the machine, there are fewer.
  std::int32_t argument(Argument const& kind, Event const& event, std::size_t at) {
    if (&kind == &entityArgument) return anyEntity();
    if (&kind == &pointArgument) return anyPoint(event);
    if (&kind == &keyArgument) return anyKey();
    if (&kind == &valueArgument && isDeviceState(event)) return anyDeviceState(event);
    if (&kind == &resultArgument) return anyOf({11, 11, 11, 0, 19, 22, -1});
    if (&kind == &timesArgument) return onceIn(6) ? anyOf({12, 25, 40}) : anyOf({1, 1, 2, 3});
    if (&kind == &onArgument) return onceIn(6) ? 1 - usual(event) : usual(event);
    if (&kind == &microsecondsArgument) return static_cast<std::int32_t>(any(2500000));
    if ((event.op == Op::config || event.op == Op::machine) && at == 0) return anyConfig();
    return kind.first() + static_cast<std::int32_t>(any(kind.count()));
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
    return event.op == Op::active || event.op == Op::machine ? 1 : 0;
  }

  std::mt19937_64 random_;
  std::vector<unsigned> weights_;
  std::optional<Event> next_ = Event{.op = Op::machine, .arguments = {0, 0, 1, 0}};
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
