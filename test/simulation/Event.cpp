#include "test/simulation/Event.h"

#include <algorithm>
#include <istream>
#include <iterator>
#include <sstream>

namespace Simulation {

namespace {

Argument const configArgument("config0 config1 none");
Argument const statusArgument("status0 status1");
Argument const handlerArgument("handleSwitchPort handleNativeVlan handleDevice handleDeviceState");
Argument const callArgument("ifadd ifdel nativeVlan rename param down up isUp");
Argument const effectArgument("none throw retry-0 retry-9 wall-forward wall-back");
Argument const clockArgument("clock0 clock1 clock2");
Argument const clockOrNoneArgument("clock0 clock1 clock2 none");
Argument const wayArgument("direct by-name");
Argument const levelsArgument("none 0 1 2 8 all");
Argument const reactorArgument("config timer");
Argument const modeArgument("initial standby polling");
Argument const iteratorArgument(0, iteratorCount - 1);
Argument const observerArgument(0, observerCount - 1);
Argument const timerArgument(0, timerCount - 1);
Argument const secondsArgument(-5, 5);
Argument const retrySecondsArgument(0, 3);

std::int32_t readArgument(Argument const& argument, std::string const& word, char const* name) {
  auto const found = std::find(argument.names.begin(), argument.names.end(), word);
  if (found != argument.names.end()) {
    return static_cast<std::int32_t>(found - argument.names.begin());
  }
  if (!argument.names.empty()) throw std::runtime_error(text(name, ": what is '", word, "'?"));
  std::int32_t const number = numberIn<std::int32_t>(word);
  if (number < argument.low || number > argument.high) {
    throw std::runtime_error(text(name, ": ", number, " is out of range"));
  }
  return number;
}

/// The kinds of events, which must be in the order of `Op`.
std::vector<OpInfo> inOrder(std::vector<OpInfo> all) {
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (static_cast<std::size_t>(all[i].op) != i) throw std::logic_error(all[i].name);
  }
  return all;
}

}  // namespace

Argument const entityArgument("config0 config1 status0 status1");
Argument const pointArgument("config0 config1 status0 status1 none");
Argument const collectionArgument("switchPort nativeVlan switchportMode device deviceState");
Argument const keyArgument(0, keyCount - 1);
Argument const valueArgument(0, 7);
Argument const resultArgument(-1, 99);
Argument const timesArgument(1, 40);
Argument const onArgument("off on");
Argument const microsecondsArgument(0, 9999999);

Argument::Argument(char const* list) {
  std::istringstream words(list);
  names.assign(std::istream_iterator<std::string>(words), {});
  high = static_cast<std::int32_t>(names.size()) - 1;
}

std::vector<OpInfo> const& allOps() {
  static Argument const* const entity = &entityArgument;
  static Argument const* const collection = &collectionArgument;
  static Argument const* const key = &keyArgument;
  static Argument const* const value = &valueArgument;
  static Argument const* const on = &onArgument;
  static std::vector<OpInfo> const all = inOrder({
      // Writers.
      {Op::set, "set", 330, {entity, collection, key, value, &wayArgument}},
      {Op::del, "del", 80, {entity, collection, key, &wayArgument}},
      {Op::delAt, "del-at", 20, {entity, collection, key}},
      {Op::delAll, "del-all", 8, {entity, collection}},
      {Op::notify, "notify", 40, {entity, collection, key, &wayArgument}},
      {Op::insert, "insert", 12, {entity, collection, key, value}},
      {Op::lookup, "lookup", 20, {entity, collection, key, &wayArgument}},
      {Op::sliceId, "slice-id", 10, {&configArgument, value}},
      {Op::zeroReferences, "zero-references", 4, {entity}},
      // Walks that are left in the middle.
      {Op::iterate, "iterate", 24, {&iteratorArgument, entity, collection}},
      {Op::iterateAt, "iterate-at", 20, {&iteratorArgument, entity, collection, key}},
      {Op::step, "step", 44, {&iteratorArgument}},
      {Op::delStep, "del-step", 12, {&iteratorArgument}},
      // Observers that come and go.
      {Op::renew, "renew", 24, {&observerArgument, &pointArgument}},
      {Op::drop, "drop", 5, {&observerArgument}},
      {Op::join, "join", 14, {&observerArgument}},
      {Op::leave, "leave", 8, {&observerArgument}},
      {Op::point, "point", 10, {&observerArgument, &pointArgument}},
      // The driver.
      {Op::fault,
       "fault",
       100,
       {&callArgument, key, &timesArgument, &resultArgument, &effectArgument}},
      {Op::mend, "mend", 20, {}},
      {Op::flip, "flip", 16, {key}},
      {Op::lose, "lose", 4, {key}},
      {Op::forget, "forget", 3, {key}},
      // Time and surroundings.
      {Op::pass, "pass", 110, {&microsecondsArgument}},
      {Op::wall, "wall", 8, {&secondsArgument}},
      {Op::retry, "retry", 10, {&retrySecondsArgument}},
      {Op::environment, "simulation-vmid", 8, {on}},
      {Op::signal, "ignore-signal-7", 8, {on}},
      {Op::timer, "timer", 40, {&timerArgument, &clockArgument, &microsecondsArgument}},
      {Op::timerDrop, "timer-drop", 4, {&timerArgument}},
      {Op::trace, "trace", 6, {&levelsArgument}},
      {Op::threadSafe, "thread-safe-references", 3, {on}},
      {Op::managerClock, "manager-clock", 4, {&clockArgument}},
      // The machine.
      {Op::machine, "machine", 8, {&configArgument, &statusArgument, on, &wayArgument}},
      {Op::machineDrop, "machine-drop", 3, {}},
      {Op::config, "config", 36, {&configArgument, &wayArgument}},
      {Op::configDel, "config-del", 2, {&wayArgument}},
      {Op::clock, "clock", 12, {&clockOrNoneArgument, &wayArgument}},
      {Op::clockDel, "clock-del", 3, {&wayArgument}},
      {Op::mode, "mode", 14, {&modeArgument, &wayArgument}},
      {Op::active, "active", 10, {on, &wayArgument}},
      {Op::zombie, "zombie", 14, {on, &wayArgument}},
      {Op::reactor, "reactor-registered", 8, {on, &reactorArgument}},
      {Op::initialized, "handle-initialized", 4, {&wayArgument}},
      {Op::handle, "handle", 40, {&handlerArgument, key, &wayArgument}},
      {Op::verify, "verify", 10, {&wayArgument}},
      {Op::poll, "poll", 14, {&wayArgument}},
      {Op::handleMode, "handle-mode", 5, {&wayArgument}},
  });
  return all;
}

bool isByName(Event const& event) {
  auto const& arguments = infoOf(event.op).arguments;
  return !arguments.empty() && arguments.back() == &wayArgument && event.flag(arguments.size() - 1);
}

Op opOf(std::string_view name) {
  for (OpInfo const& info : allOps()) {
    if (info.name == name) return info.op;
  }
  throw std::runtime_error(text("there is no event '", name, "'"));
}

std::string textOf(Event const& event) {
  OpInfo const& info = infoOf(event.op);
  std::string line;
  if (event.planner >= 0) {
    line = text("at ", event.planner, " ", event.after, event.throws ? " throw: " : ": ");
  }
  line += info.name;
  for (std::size_t i = 0; i < info.arguments.size(); ++i) {
    auto const& names = info.arguments[i]->names;
    line += " " + (names.empty() ? text(event[i]) : names[event.index(i)]);
  }
  return line;
}

Event eventOf(std::string_view line) {
  std::istringstream words{std::string(line)};
  std::string word;
  words >> word;
  Event event;
  if (word == "at") {
    std::string planner;
    std::string after;
    words >> planner >> after >> word;
    event.throws = after.back() != ':';
    if (!event.throws) after.pop_back();
    if (event.throws && word != "throw:") throw std::runtime_error("expected 'throw:'");
    event.planner = numberIn<std::int8_t>(planner);
    event.after = numberIn<std::uint8_t>(after);
    if (event.planner < 0 || static_cast<unsigned>(event.planner) >= plannerCount) {
      throw std::runtime_error(text("no place has the number ", planner));
    }
    if (event.throws) words >> word;
  }
  event.op = opOf(word);
  OpInfo const& info = infoOf(event.op);
  for (std::size_t i = 0; i < info.arguments.size(); ++i) {
    std::string argument;
    words >> argument;
    event.arguments[i] = readArgument(*info.arguments[i], argument, info.name);
  }
  if (words >> word) throw std::runtime_error(text(info.name, ": '", word, "' is too much"));
  return event;
}

std::vector<Event> eventsOf(std::istream& script) {
  std::vector<Event> events;
  std::string line;
  for (unsigned at = 1; std::getline(script, line); ++at) {
    if (line.empty() || line.front() == '#') continue;
    try {
      events.push_back(eventOf(line));
    } catch (std::runtime_error const& error) {
      throw std::runtime_error(text("line ", at, ": ", error.what()));
    }
  }
  number(events);
  return events;
}

void number(std::vector<Event>& events) {
  std::uint32_t id = 0;
  for (Event& event : events) event.id = id++;
}

}  // namespace Simulation
