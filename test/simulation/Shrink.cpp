#include "test/simulation/Shrink.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

#include "test/simulation/End.h"
#include "test/simulation/Lockstep.h"

namespace Simulation {

namespace {

std::vector<Event> cut(std::vector<Event> const& events, std::size_t from, std::size_t count) {
  auto const first = events.begin() + static_cast<std::ptrdiff_t>(from);
  auto const last = first + static_cast<std::ptrdiff_t>(std::min(count, events.size() - from));
  std::vector<Event> rest(events.begin(), first);
  rest.insert(rest.end(), last, events.end());
  return rest;
}

/// Makes failing events fewer and plainer as long as they still fail.
class Shrinking {
 public:
  Shrinking(std::vector<Event> events, std::optional<Op> leftOut)
      : events_(std::move(events)), leftOut_(leftOut) {}

  std::vector<Event> result() {
    for (std::size_t before = events_.size() + 1; events_.size() < before;) {
      before = events_.size();
      leaveOut();
      for (std::size_t at = 0; at < events_.size(); ++at) simplify(at);
      joinTimes();
      if (events_.size() == before) leaveOutTwo();
    }
    return events_;
  }

 private:
  /// Leaves out runs of events, ever shorter ones.
  void leaveOut() {
    for (std::size_t length = std::max<std::size_t>(events_.size() / 2, 1); length > 0;
         length /= 2) {
      for (std::size_t from = events_.size(); from > 0;) {
        from -= std::min(from, length);
        tryEvents(cut(events_, from, length));
        from = std::min(from, events_.size());
      }
    }
  }

  /// Leaves out two events that need each other only, or one event and the wait of a plan that
  /// counted it.
  void leaveOutTwo() {
    if (events_.size() > 60) return;
    for (std::size_t at = events_.size(); at-- > 0;) {
      for (std::size_t other = 0; other < events_.size() && at < events_.size(); ++other) {
        if (other < at && tryEvents(cut(cut(events_, at, 1), other, 1))) break;
        if (other == at || events_[other].after == 0) continue;
        std::vector<Event> sooner = events_;
        --sooner[other].after;
        if (tryEvents(cut(sooner, at, 1))) break;
      }
    }
  }

  bool tryEvents(std::vector<Event> events) {
    if (!fails(events, leftOut_)) return false;
    events_ = std::move(events);
    return true;
  }

  /// Turns plans into events that happen at once, and values into the first of their kind.
  void simplify(std::size_t at) {
    change(at, [](Event& event) { event.throws = false; });
    change(at, [](Event& event) {
      event.planner = -1;
      event.throws = false;
    });
    change(at, [](Event& event) { event.after = 0; });
    auto const& arguments = infoOf(events_[at].op).arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      std::int32_t const least = std::max(arguments[i]->low, 0);
      bool const first = change(at, [&](Event& event) { event.arguments[i] = least; });
      if (!first) change(at, [&](Event& event) { event.arguments[i] = least + 1; });
    }
  }

  /// Joins the pieces in which time passes. Some failures need only a moment within a second, so an
  /// event may have mattered for nothing but the time that it took.
  void joinTimes() {
    for (std::size_t at = 0; at < events_.size(); ++at) {
      if (events_[at].op == Op::pass) continue;
      for (std::int32_t const microseconds : {100000, 300000}) {
        Event const passing{.op = Op::pass, .arguments = {microseconds}};
        if (change(at, [&](Event& event) { event = passing; })) break;
      }
    }
    for (std::size_t at = 0; at < events_.size(); ++at) {
      auto const isPass = [](Event const& event) { return event.op == Op::pass; };
      auto const from = events_.begin() + static_cast<std::ptrdiff_t>(at);
      if (!isPass(*from)) continue;
      auto const next = std::find_if(from + 1, events_.end(), isPass);
      if (next == events_.end()) return;
      std::vector<Event> joined = events_;
      std::int32_t& total = joined[static_cast<std::size_t>(next - events_.begin())].arguments[0];
      total = (total + (*from)[0]) % (microsecondsArgument.high + 1);
      if (tryEvents(cut(joined, at, 1))) --at;
    }
  }

  template <class Change>
  bool change(std::size_t at, Change const& makePlainer) {
    Event const before = events_[at];
    makePlainer(events_[at]);
    if (textOf(events_[at]) != textOf(before) && fails(events_, leftOut_)) return true;
    events_[at] = before;
    return false;
  }

  std::vector<Event> events_;
  std::optional<Op> leftOut_;
};

}  // namespace

bool fails(std::vector<Event> const& events, std::optional<Op> without) {
  return statusOf([&] {
           dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
           Probes probes;
           Outcome const outcome = run(events, probes, {.without = without, .patience = 3});
           _exit(outcome.failure.empty() ? 0 : 1);
         }) != 0;
}

std::vector<Event> shrunk(std::vector<Event> events, std::optional<Op> without) {
  std::vector<Event> result = Shrinking(std::move(events), without).result();
  number(result);
  return result;
}

}  // namespace Simulation
