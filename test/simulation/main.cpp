#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "test/simulation/Generator.h"
#include "test/simulation/Lockstep.h"
#include "test/simulation/Shrink.h"
#include "test/simulation/Text.h"

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
    "  --probes         prints how often each probe was reached\n";

struct Options {
  std::uint64_t from = 1;
  std::uint64_t to = 50;
  std::size_t events = 1000;
  bool single = false;
  bool probes = false;
  std::string script;
};

/// Where the run is; read when the process that runs has died.
struct Progress {
  std::uint64_t seed;
  std::size_t event;
};
Progress* progress = nullptr;

void watch(std::size_t event) {
  progress->event = event;
}

std::uint64_t numberIn(std::string_view word) {
  std::uint64_t number = 0;
  auto const [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  if (error != std::errc() || end != word.data() + word.size()) {
    throw std::runtime_error(text("expected a number, found '", word, "'"));
  }
  return number;
}

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
      options.from = numberIn(value.substr(0, dash));
      options.to = numberIn(dash == value.npos ? value : value.substr(dash + 1));
    } else if (name == "--seed") {
      options.from = options.to = numberIn(value);
      options.single = true;
    } else if (name == "--events") {
      options.events = static_cast<std::size_t>(numberIn(value));
    } else if (name == "--script") {
      options.script = value;
      options.single = true;
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

/// What a first run leaves behind for good is no leak: what leaks leaks again.
std::size_t leaksOf(std::vector<Event> const& events) {
  Probes ignored;
  return run(events, ignored).leaks;
}

void printProbes(Probes const& probes) {
  for (std::size_t i = 0; i < probeCount; ++i) {
    std::printf("%10llu %s\n", static_cast<unsigned long long>(probes.count(i)), Probes::name(i));
  }
}

/// Returns the exit status: 0, or 1 when a seed fails, which ends the run.
int runSeeds(Options const& options) {
  Probes probes;
  Outcome all;
  std::size_t failures = 0;
  std::uint64_t seed = options.from;
  for (; seed <= options.to && failures == 0; ++seed) {
    progress->seed = seed;
    auto const events = eventsFor(options, seed);
    Outcome const one = run(events, probes, watch);
    all.digest = all.digest * 31 + one.digest;
    all.events += one.events;
    all.ends += one.ends;
    if (one.failure.empty() && one.leaks != 0) all.leaks += leaksOf(events);
    if (one.failure.empty() && all.leaks == 0) continue;
    ++failures;
    std::printf("seed %llu, %s", static_cast<unsigned long long>(seed), one.failure.c_str());
    if (all.leaks != 0) std::printf("%zu blocks of memory are left\n", all.leaks);
  }
  if (options.probes) printProbes(probes);
  bool const mustReach = !options.single && failures == 0;
  for (std::size_t i = 0; i < probeCount && mustReach; ++i) {
    if (probes.count(i) == 0) std::printf("never reached: %s\n", Probes::name(i));
  }
  std::printf("simulation: digest %016llx\n", static_cast<unsigned long long>(all.digest));
  std::printf(
      "simulation: seeds %llu, events %zu, probes %zu/%zu, ends %zu, failures %zu, leaks %zu\n",
      static_cast<unsigned long long>(seed - options.from), all.events, probes.reached(),
      probeCount, all.ends, failures, all.leaks);
  std::fflush(stdout);
  return failures > 0 || (mustReach && probes.reached() < probeCount) ? 1 : 0;
}

/// Prints the shortest script found that fails like the run that came as far as `progress`.
void shrink(Options const& options) {
  std::vector<Event> events = eventsFor(options, progress->seed);
  if (!fails(events)) return;
  if (events.size() > progress->event + 1) {
    std::vector<Event> const start(
        events.begin(), events.begin() + static_cast<std::ptrdiff_t>(progress->event) + 1);
    if (fails(start)) events = start;
  }
  std::size_t const before = events.size();
  events = shrunk(std::move(events));
  std::printf("# %zu of %zu events fail; run them with: simulation --script FILE\n", events.size(),
              before);
  for (Event const& event : events) std::printf("%s\n", textOf(event).c_str());
}

/// Runs in a process of its own, so that its death tells how far it came.
int supervise(Options const& options) {
  rlimit const noCore{0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  void* const shared =
      mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) return 2;
  progress = new (shared) Progress{options.from, 0};
  std::fflush(stdout);
  pid_t const child = fork();
  if (child == 0) std::exit(runSeeds(options));
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return 2;
  if (status == 0) return 0;
  if (WIFSIGNALED(status)) {
    std::printf("seed %llu, event %zu: the process ended by signal %d\n",
                static_cast<unsigned long long>(progress->seed), progress->event, WTERMSIG(status));
  }
  shrink(options);
  return 1;
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
