#include <valgrind/callgrind.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/Run.h"

/// Times benchmarks, or has callgrind count the instructions of one (bench/callgrind.py).
namespace Kest::Bench {

namespace {

struct Benchmark {
  std::string name;
  std::function<void(Run&)> work;
  Time time;
};

std::vector<Benchmark>& benchmarks() {
  static std::vector<Benchmark> all;
  return all;
}

double now(Time time) {
  timespec read{};
  clock_gettime(time == Time::own ? CLOCK_THREAD_CPUTIME_ID : CLOCK_MONOTONIC, &read);
  return static_cast<double>(read.tv_sec) + static_cast<double>(read.tv_nsec) * 1e-9;
}

Benchmark const& named(std::string_view name) {
  for (Benchmark const& benchmark : benchmarks()) {
    if (benchmark.name == name) return benchmark;
  }
  std::fprintf(stderr, "there is no %s\n", std::string(name).c_str());
  std::exit(2);
}

/// Runs it, and ends the process if what was measured was not done.
void runChecked(Benchmark const& benchmark, Run& run) {
  benchmark.work(run);
  if (run.failure().empty()) return;
  std::fprintf(stderr, "%s: %s\n", benchmark.name.c_str(), run.failure().c_str());
  std::exit(1);
}

/// A benchmark that is timed, and what its runs came to.
struct Timed {
  Benchmark const& benchmark;
  std::uint64_t iterations = 1;
  std::vector<double> results = {};

  Run run() const {
    Run run(iterations, benchmark.time);
    runChecked(benchmark, run);
    return run;
  }

  /// Finds how many iterations take so long. A figure is there after the first.
  void calibrate(double seconds) {
    for (;;) {
      Run const tried = run();
      if (tried.isFigure()) results.push_back(tried.result());
      if (tried.isFigure() || tried.seconds() >= seconds) return;
      double const missing = seconds / std::max(tried.seconds(), seconds / 100);
      iterations = static_cast<std::uint64_t>(static_cast<double>(iterations) * 1.2 * missing) + 1;
    }
  }
};

/// Times benchmarks side by side, in a new random order each time, and prints a line for each: its
/// name and its results.
int timeAll(double seconds, int repetitions, std::vector<Timed> all) {
  for (Timed& one : all) one.calibrate(seconds);
  std::vector<Timed*> order;
  for (Timed& one : all) {
    if (one.results.empty()) order.push_back(&one);
  }
  std::mt19937_64 random(1);
  for (int i = 0; i < repetitions; ++i) {
    std::shuffle(order.begin(), order.end(), random);
    for (Timed* const one : order) one->results.push_back(one->run().result());
  }
  for (Timed const& one : all) {
    std::printf("%s", one.benchmark.name.c_str());
    for (double const result : one.results) std::printf("\t%.4f", result);
    std::printf("\n");
  }
  return 0;
}

/// Has callgrind count at least so many operations, and prints how many they were.
int count(Benchmark const& benchmark, std::uint64_t operationsAtLeast) {
  Run first(1, benchmark.time);  // tells how many operations an iteration does
  runChecked(benchmark, first);
  std::uint64_t const iterations =
      (operationsAtLeast + first.operations() - 1) / first.operations();

  // What is done at the first call, and at the first use of each key, is done.
  Run again(iterations, benchmark.time);
  runChecked(benchmark, again);

  Run counted(iterations, benchmark.time);
  CALLGRIND_START_INSTRUMENTATION;
  benchmark.work(counted);
  CALLGRIND_STOP_INSTRUMENTATION;
  std::printf("%llu\n", static_cast<unsigned long long>(counted.operations()));
  return 0;
}

}  // namespace

void Run::start() {
  startedAt_ = now(time_);
  CALLGRIND_TOGGLE_COLLECT;
}

void Run::stop() {
  CALLGRIND_TOGGLE_COLLECT;
  seconds_ += now(time_) - startedAt_;
}

void measure(std::string const& row, std::string const& variant, char const* who,
             std::function<void(Run&)> work, Time time) {
  benchmarks().push_back({row + "/" + variant + "/" + who, std::move(work), time});
}

}  // namespace Kest::Bench

int main(int argc, char** argv) {
  using namespace Kest::Bench;
  measureOurs();
#ifdef KEST_BENCH_PEERS
  measurePeers();
  measureRequests();
#endif
  std::string_view const mode = argc < 2 ? "" : argv[1];
  if (mode == "list" && argc == 2) {
    for (Benchmark const& benchmark : benchmarks()) std::printf("%s\n", benchmark.name.c_str());
    return 0;
  }
  if (mode == "count" && argc == 4)
    return count(named(argv[3]), std::strtoul(argv[2], nullptr, 10));
  if (mode == "time" && argc > 4) {
    std::vector<Timed> all;
    for (int i = 4; i < argc; ++i) all.push_back({named(argv[i])});
    return timeAll(std::atof(argv[2]), std::atoi(argv[3]), std::move(all));
  }
  std::fprintf(stderr,
               "usage: %s list\n       %s time SECONDS REPETITIONS NAME...\n"
               "       %s count OPERATIONS NAME\n",
               argv[0], argv[0], argv[0]);
  return 2;
}
