#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <new>
#include <optional>

#include "test/simulation/End.h"
#include "test/simulation/Generator.h"
#include "test/simulation/Lockstep.h"
#include "test/simulation/Shrink.h"

/// Simulates the whole library in one process, on virtual time, by seed, against a plain model.
namespace Simulation {
namespace {

constexpr char const* usage =
    "usage: simulation [--seeds FROM-TO] [--events N] [--probes]\n"
    "       simulation --seed SEED [--events N] [--probes]\n"
    "       simulation --script FILE\n"
    "  --seeds FROM-TO  runs these seeds; every probe must be reached (default: 1-50)\n"
    "  --seed SEED      runs one seed\n"
    "  --events N       events of each seed (default: 1000)\n"
    "  --script FILE    runs the events of a script, as a failure prints it\n"
    "  --probes         prints how often each probe was reached\n"
    "  --without EVENT  leaves out such events in the real world, so that the run must fail\n";

struct Options {
  std::uint64_t from = 1;
  std::uint64_t to = 50;
  std::size_t events = 1000;
  bool single = false;
  bool probes = false;
  std::optional<Op> without;
  std::string script;
};

/// How far the run has come. Shared memory: the supervising process reads it even after the one
/// that runs has died.
struct Progress {
  std::uint64_t seed = 0;
  std::size_t event = 0;
  std::uint64_t seeds = 0;
  std::uint64_t digest = 0;
  std::size_t events = 0;
  std::size_t ends = 0;
  std::size_t leaks = 0;
  Probes probes;
};

Options optionsOf(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    std::string_view const name = argv[i];
    if (name == "--probes") {
      options.probes = true;
      continue;
    }
    if (i + 1 == argc) throw std::runtime_error(text("what is '", name, "'?"));
    std::string_view const value = argv[++i];
    if (name == "--seeds") {
      std::size_t const dash = value.find('-');
      options.from = numberIn<std::uint64_t>(value.substr(0, dash));
      options.to = numberIn<std::uint64_t>(dash == value.npos ? value : value.substr(dash + 1));
    } else if (name == "--seed") {
      options.from = options.to = numberIn<std::uint64_t>(value);
      options.single = true;
    } else if (name == "--events") {
      options.events = numberIn<std::size_t>(value);
    } else if (name == "--script") {
      options.script = value;
      options.from = options.to = 0;
      options.single = true;
    } else if (name == "--without") {
      options.without = opOf(value);
    } else {
      throw std::runtime_error(text("what is '", name, "'?"));
    }
  }
  return options;
}

std::vector<Event> eventsFor(Options const& options, std::uint64_t seed) {
  if (options.script.empty()) return eventsOf(seed, options.events);
  std::ifstream script(options.script);
  if (!script) throw std::runtime_error(text("cannot read ", options.script));
  return eventsOf(script);
}

/// Runs the seeds up to the first that fails; returns whether none does.
bool runSeeds(Options const& options, Progress& progress) {
  for (std::uint64_t seed = options.from; seed <= options.to; ++seed) {
    progress.seed = seed;
    auto const events = eventsFor(options, seed);
    Circumstances const circumstances{.at = &progress.event, .without = options.without};
    Outcome const one = run(events, progress.probes, circumstances);
    ++progress.seeds;
    progress.digest = progress.digest * 31 + one.digest;
    progress.events += one.events;
    progress.ends += one.ends;
    progress.leaks += one.leaks;
    if (!one.failure.empty()) {
      std::printf("seed %llu, %s", static_cast<unsigned long long>(seed), one.failure.c_str());
      return false;
    }
  }
  return true;
}

/// Prints the shortest script found for the failure at `progress`.
void shrink(Options const& options, Progress const& progress) {
  std::vector<Event> events = eventsFor(options, progress.seed);
  if (events.size() > progress.event + 1) {
    auto const end = events.begin() + static_cast<std::ptrdiff_t>(progress.event) + 1;
    std::vector<Event> const start(events.begin(), end);
    if (fails(start, options.without)) events = start;
  }
  std::size_t const before = events.size();
  events = shrunk(std::move(events), options.without);
  std::printf("# %zu of %zu events fail; run them with: simulation --script FILE\n", events.size(),
              before);
  for (Event const& event : events) std::printf("%s\n", textOf(event).c_str());
}

/// Whether every probe was reached; prints those that were not.
bool allReached(Probes const& probes) {
  for (std::size_t i = 0; i < probeCount; ++i) {
    if (probes.count(i) == 0) std::printf("never reached: %s\n", text(Probes::name(i)).c_str());
  }
  return probes.reached() == probeCount;
}

void printProbes(Probes const& probes) {
  for (std::size_t i = 0; i < probeCount; ++i) {
    std::printf("%10llu %s\n", static_cast<unsigned long long>(probes.count(i)),
                text(Probes::name(i)).c_str());
  }
}

/// Prints the lines that scripts read.
void printTable(Progress const& progress, bool failed) {
  std::printf("simulation: digest %016llx\n", static_cast<unsigned long long>(progress.digest));
  std::printf(
      "simulation: seeds %llu, events %zu, probes %zu/%zu, ends %zu, failures %d, leaks %zu\n",
      static_cast<unsigned long long>(progress.seeds), progress.events, progress.probes.reached(),
      probeCount, progress.ends, failed ? 1 : 0, progress.leaks);
}

/// Runs the seeds in a process of their own, so that its death is noticed.
int supervise(Options const& options) {
  eventsFor(options, options.from);  // a script that is refused is refused before anything runs
  rlimit const noCore{0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  void* const shared =
      mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) throw std::runtime_error("no memory to share");
  auto& progress = *new (shared) Progress;
  int const status = statusOf([&] { std::exit(runSeeds(options, progress) ? 0 : 1); });
  if (WIFSIGNALED(status)) {
    std::printf("seed %llu, event %zu: the process ended by signal %d\n",
                static_cast<unsigned long long>(progress.seed), progress.event, WTERMSIG(status));
  }
  bool const failed = status != 0;
  if (failed) shrink(options, progress);
  if (options.probes) printProbes(progress.probes);
  bool const reached = options.single || failed || allReached(progress.probes);
  printTable(progress, failed);
  return failed || !reached ? 1 : 0;
}

}  // namespace
}  // namespace Simulation

int main(int argc, char** argv) {
  try {
    return Simulation::supervise(Simulation::optionsOf(argc, argv));
  } catch (std::exception const& error) {
    std::fprintf(stderr, "simulation: %s\n%s", error.what(), Simulation::usage);
    return 2;
  }
}
