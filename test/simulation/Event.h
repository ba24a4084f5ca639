#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "test/support/Text.h"

/// Events of a simulation. They are data: they name what they are about by number, whatever the
/// world looks like when they happen, so any selection of a run's events can run too.
namespace Simulation {

using Support::text;

inline constexpr unsigned configCount = 2;
inline constexpr unsigned entityCount = 4;      // the configurations, then the statuses
inline constexpr unsigned collectionCount = 5;  // in order of their attribute numbers
inline constexpr unsigned keyCount = 8;         // of ports and of devices
inline constexpr unsigned clockCount = 3;
inline constexpr unsigned iteratorCount = 4;

/// Observers have places: first those of configurations, then those of statuses. The places of
/// timers follow. Whoever has a place can have plans.
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

/// A kind of argument: a number from `low` to `high`, or the number of a name.
struct Argument {
  Argument(std::int32_t lowest, std::int32_t highest) : low(lowest), high(highest) {}
  /// @param list the names, separated by blanks
  explicit Argument(char const* list);

  std::size_t count() const { return static_cast<std::size_t>(high - low) + 1; }

  std::vector<std::string> names;
  std::int32_t low = 0;
  std::int32_t high = 0;
};

/// A kind of event.
struct OpInfo {
  Op op;
  char const* name;
  unsigned weight;  // how often it is made, relative to the others
  std::vector<Argument const*> arguments;
};

std::vector<OpInfo> const& allOps();
inline OpInfo const& infoOf(Op op) {
  return allOps()[static_cast<std::size_t>(op)];
}

/// Whether the event is done to an observer.
inline bool isOfObserver(Op op) {
  return op >= Op::renew && op <= Op::point;
}
/// Whether the event is a planned fault of the driver or happens to the hardware.
inline bool isOfDriver(Op op) {
  return op >= Op::fault && op <= Op::forget;
}

/// The kind of event of that name; `std::runtime_error` when there is none.
Op opOf(std::string_view name);

// The kinds of arguments that the generator treats specially.
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
  /// The place of the observer or timer that is to do this later, when it has been told `after`
  /// more times; -1: it is done now. With `throws`, the handler then throws.
  std::int8_t planner = -1;
  std::uint8_t after = 0;
  bool throws = false;
  /// Its number in the run.
  std::uint32_t id = 0;

  std::int32_t operator[](std::size_t i) const { return arguments[i]; }
  unsigned index(std::size_t i) const { return static_cast<unsigned>(arguments[i]); }
  bool flag(std::size_t i) const { return arguments[i] != 0; }
};

/// The number that a word is; `std::runtime_error` when it is none.
template <std::integral Number>
Number numberIn(std::string_view word) {
  Number number = 0;
  auto const [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  if (error == std::errc() && end == word.data() + word.size()) return number;
  throw std::runtime_error(text("expected a number, found '", word, "'"));
}

/// Whether the event is carried out by generic access.
bool isByName(Event const& event);

/// One line, as in `set config0 device 3 5 direct` or `at 4 0 throw: poll direct`.
std::string textOf(Event const& event);
/// Reads such a line; `std::runtime_error` says what is wrong with it.
Event eventOf(std::string_view line);

/// Reads a script: one event a line. Empty lines and those that start with `#` are ignored.
std::vector<Event> eventsOf(std::istream& script);

/// Numbers the events of a run.
void number(std::vector<Event>& events);

}  // namespace Simulation
