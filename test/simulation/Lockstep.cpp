#include "test/simulation/Lockstep.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "test/simulation/Allocations.h"
#include "test/simulation/End.h"
#include "test/simulation/PlainWorld.h"
#include "test/simulation/RealWorld.h"

namespace Simulation {

namespace {

/// FNV-1a.
class Digest {
 public:
  void add(std::string_view bytes) {
    for (char const byte : bytes) add(static_cast<unsigned char>(byte));
    add('\n');
  }
  std::uint64_t value() const { return value_; }

 private:
  void add(unsigned char byte) { value_ = (value_ ^ byte) * 0x100000001b3U; }
  std::uint64_t value_ = 0xcbf29ce484222325U;
};

std::string joined(Support::Lines const& lines) {
  std::string all;
  for (std::string const& line : lines) all.append(line).append("\n");
  return all;
}

/// The lines that both start with, then how each goes on.
std::string difference(Support::Lines const& expected, Support::Lines const& found) {
  auto const [at, foundAt] =
      std::mismatch(expected.begin(), expected.end(), found.begin(), found.end());
  std::string all;
  for (auto line = expected.begin(); line != at; ++line) all += "    " + *line + "\n";
  for (auto line = at; line != expected.end(); ++line) all += "  - " + *line + "\n";
  for (auto line = foundAt; line != found.end(); ++line) all += "  + " + *line + "\n";
  return all;
}

class Lockstep {
 public:
  Lockstep(Probes& probes, std::optional<Op> without) : plain_(probes), real_(without) {}

  void take(Event const& event) {
    before_ = plain_.state;
    plain_.lines.clear();
    plain_.carriedOut.clear();
    try {
      plain_.take(event);
    } catch (ProcessEnds const& end) {
      ++ends_;
      expectEnd(event, end.signal);
      plain_.state = before_;
      plain_.state.driver.mend();
      real_.mend();
      return;
    }
    real_.take(event, plain_.carriedOut);
    Support::Lines const lines = real_.takenLines();
    for (std::string const& line : lines) digest_.add(line);
    if (lines != plain_.lines) failure_ = difference(plain_.lines, lines);
    failure_ += real_.differenceFrom(plain_.state);
    failure_ += plain_.disagreement();
  }

  std::string const& failure() const { return failure_; }
  std::uint64_t digest() const { return digest_.value(); }
  std::size_t ends() const { return ends_; }

 private:
  void expectEnd(Event const& event, int signal) {
    End const end = endOf([&] {
      real_.goOnAloud();
      real_.take(event, plain_.carriedOut);
    });
    std::string const expected = joined(plain_.lines);
    digest_.add(end.text);
    if (end.signal != signal) {
      failure_ = text("should have ended by signal ", signal, ", not ", end.signal, "\n");
    }
    if (end.text != expected) {
      failure_ += "should have left\n" + expected + "but left\n" + end.text;
    }
  }

  PlainWorld plain_;
  PlainState before_;
  RealWorld real_;
  Digest digest_;
  std::size_t ends_ = 0;
  std::string failure_;
};

void runInto(Outcome& outcome, std::vector<Event> const& events, Probes& probes,
             Circumstances const& circumstances) {
  Lockstep lockstep(probes, circumstances.without);
  std::size_t taken = 0;
  for (Event const& event : events) {
    if (taken++ % 1000 == 0) alarm(circumstances.patience);
    if (circumstances.at != nullptr) *circumstances.at = event.id;
    lockstep.take(event);
    ++outcome.events;
    if (!lockstep.failure().empty()) {
      outcome.failure = text("event ", event.id, ": ", textOf(event), "\n", lockstep.failure());
      break;
    }
  }
  alarm(0);
  outcome.digest = lockstep.digest();
  outcome.ends = lockstep.ends();
}

Outcome runOnce(std::vector<Event> const& events, Probes& probes,
                Circumstances const& circumstances) {
  Outcome outcome;
  std::size_t const before = liveAllocations();
  runInto(outcome, events, probes, circumstances);
  if (outcome.failure.empty()) {
    outcome.leaks = liveAllocations() - before;
    outcome.failure = RealWorld::leftOver();
  }
  return outcome;
}

}  // namespace

Outcome run(std::vector<Event> const& events, Probes& probes, Circumstances const& circumstances) {
  Outcome outcome = runOnce(events, probes, circumstances);
  if (outcome.leaks == 0 || !outcome.failure.empty()) return outcome;
  // Memory that only the first run takes, and keeps, is no leak; a leak leaks again.
  Probes ignored;
  outcome.leaks = runOnce(events, ignored, circumstances).leaks;
  if (outcome.leaks != 0) outcome.failure = text("blocks of memory left: ", outcome.leaks, "\n");
  return outcome;
}

}  // namespace Simulation
