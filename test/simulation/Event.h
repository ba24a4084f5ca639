#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What happens in a simulation. Events are data: they name what they are about by number, whatever
/// the world looks like when they come, so that any selection of a run's events runs too.
namespace Simulation {

inline constexpr unsigned configCount = 2;
inline constexpr unsigned entityCount = 4;      // the configurations, then the statuses
inline constexpr unsigned collectionCount = 5;  // in order of their attribute numbers
inline constexpr unsigned keyCount = 8;         // of ports and of devices
inline constexpr unsigned clockCount = 3;
inline constexpr unsigned iteratorCount = 4;

/// Observers have places: of configurations, then of statuses. Timers have theirs behind them; what
/// has a place can have plans.
inline constexpr unsigned configObserverCount = 4;
inline constexpr unsigned observerCount = 7;
inline constexpr unsigned timerCount = 2;
inline constexpr unsigned plannerCount = observerCount + timerCount;

enum class Op : std::uint8_t {
  set,
  del,
  delAt,
  delAll,
  notify,
  insert,
  lookup,
  sliceId,
  zeroReferences,
  iterate,
  iterateAt,
  step,
  delStep,
  renew,
  drop,
  join,
  leave,
  point,
  fault,
  mend,
  flip,
  lose,
  forget,
  pass,
  wall,
  retry,
  environment,
  signal,
  timer,
  timerDrop,
  trace,
  threadSafe,
  managerClock,
  machine,
  machineDrop,
  config,
  configDel,
  clock,
  clockDel,
  mode,
  active,
  zombie,
  reactor,
  initialized,
  handle,
  verify,
  poll,
  handleMode,
};

/// What an argument of an event is: one of `words`, or a number from `low` to `high`.
struct Argument {
  std::span<char const* const> words;
  std::int32_t low = 0;
  std::int32_t high = 0;

  std::int32_t first() const { return words.empty() ? low : 0; }
  std::size_t count() const {
    return words.empty() ? static_cast<std::size_t>(high - low) + 1 : words.size();
  }
};

/// What there is to know of one kind of event.
struct OpInfo {
  Op op;
  char const* name;
  unsigned weight;  // how often, beside the others
  std::vector<Argument const*> arguments;
};

std::vector<OpInfo> const& allOps();
inline OpInfo const& infoOf(Op op) {
  return allOps()[static_cast<std::size_t>(op)];
}

/// Whether it is done to an observer.
inline bool isOfObserver(Op op) {
  return op >= Op::renew && op <= Op::point;
}
/// Whether it is planned for the driver, or happens to what is behind it.
inline bool isOfDriver(Op op) {
  return op >= Op::fault && op <= Op::forget;
}

/// The kind of event of that name; `std::runtime_error` when there is none.
Op opOf(std::string_view name);

// The kinds of arguments that the generator treats by themselves.
extern Argument const entityArgument;
extern Argument const collectionArgument;
extern Argument const pointArgument;
extern Argument const keyArgument;
extern Argument const valueArgument;
extern Argument const resultArgument;
extern Argument const timesArgument;
extern Argument const onArgument;
extern Argument const microsecondsArgument;

struct Event {
  Op op{};
  std::array<std::int32_t, 5> arguments{};
  /// Who does it, instead of it being done now: the place in question, when it has been told this
  /// many times more, and whether it throws then. -1: nobody.
  std::int8_t planner = -1;
  std::uint8_t after = 0;
  bool throws = false;
  /// Its number in the run.
  std::uint32_t id = 0;

  std::int32_t operator[](std::size_t i) const { return arguments[i]; }
  unsigned index(std::size_t i) const { return static_cast<unsigned>(arguments[i]); }
  bool flag(std::size_t i) const { return arguments[i] != 0; }
};

/// Whether an event of the machine says, last, whether it goes by name.
inline bool hasWay(Op op) {
  return op != Op::machineDrop && op != Op::reactor;
}

/// One line, as in `set config0 device 3 5 direct` or `at 4 0 throw: poll direct`.
std::string textOf(Event const& event);
/// Reads such a line; `std::runtime_error` says what is wrong with it.
Event eventOf(std::string_view line);

/// A script: one event a line; empty lines and those that start with `#` are left out.
std::vector<Event> eventsOf(std::istream& script);

/// Numbers the events of a run.
void number(std::vector<Event>& events);

}  // namespace Simulation
