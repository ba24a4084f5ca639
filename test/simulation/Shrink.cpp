#include "test/simulation/Shrink.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "test/simulation/Lockstep.h"

namespace Simulation {

namespace {

std::vector<Event> without(std::vector<Event> const& events, std::size_t from, std::size_t count) {
  auto const first = events.begin() + static_cast<std::ptrdiff_t>(from);
  auto const last = first + static_cast<std::ptrdiff_t>(std::min(count, events.size() - from));
  std::vector<Event> rest(events.begin(), first);
  rest.insert(rest.end(), last, events.end());
  return rest;
}

/// Leaves out runs of events, ever shorter ones, as long as that goes.
void leaveOut(std::vector<Event>& events) {
  for (std::size_t length = events.size() / 2; length > 0; length /= 2) {
    for (std::size_t from = events.size(); from > 0;) {
      from -= std::min(from, length);
      std::vector<Event> fewer = without(events, from, length);
      if (fails(fewer)) events = std::move(fewer);
      from = std::min(from, events.size());
    }
  }
}

template <class Change>
bool tryChange(std::vector<Event>& events, std::size_t at, Change const& change) {
  Event const before = events[at];
  change(events[at]);
  if (textOf(events[at]) != textOf(before) && fails(events)) return true;
  events[at] = before;
  return false;
}

/// Makes plans things that happen at once, and values the first of their kind.
void simplify(std::vector<Event>& events) {
  for (std::size_t at = 0; at < events.size(); ++at) {
    tryChange(events, at, [](Event& event) { event.throws = false; });
    tryChange(events, at, [](Event& event) {
      event.planner = -1;
      event.throws = false;
    });
    tryChange(events, at, [](Event& event) { event.after = 0; });
    auto const& arguments = infoOf(events[at].op).arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      std::int32_t const least = std::max(arguments[i]->low, 0);
      bool const first = tryChange(events, at, [&](Event& event) { event.arguments[i] = least; });
      if (!first) tryChange(events, at, [&](Event& event) { event.arguments[i] = least + 1; });
    }
  }
}

}  // namespace

bool fails(std::vector<Event> const& events) {
  pid_t const child = fork();
  if (child < 0) std::abort();
  if (child == 0) {
    int const nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDERR_FILENO);
    Probes probes;
    Outcome const outcome = run(events, probes);
    _exit(outcome.failure.empty() ? 0 : 1);
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child) std::abort();
  return status != 0;
}

std::vector<Event> shrunk(std::vector<Event> events) {
  for (std::size_t before = events.size() + 1; events.size() < before;) {
    before = events.size();
    leaveOut(events);
    simplify(events);
  }
  number(events);
  return events;
}

}  // namespace Simulation
