#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/Run.h"
#include "bench/rows/Rows.h"

/// Has callgrind count the instructions of one operation: see bench/callgrind.py, which runs this.
namespace Kest::Bench {

namespace {

struct Benchmark {
  std::string name;
  std::function<void(Run&)> work;
  Measured measured;
};

std::vector<Benchmark>& benchmarks() {
  static std::vector<Benchmark> all;
  return all;
}

class CountedRun : public Run {
 public:
  CountedRun(std::uint64_t iterations, Measured measured) : Run(iterations), measured_(measured) {}

  void operationsAre(std::size_t operations) override { operations_ = operations; }
  void fail(char const* why) override { failure_ = why; }

  std::uint64_t operations() const { return operations_; }
  /// Null when all is well.
  char const* failure() const { return failure_; }

 private:
  void loopStarts() override { toggle(Measured::loop); }
  void loopEnds() override { toggle(Measured::loop); }
  void partStarts() override { toggle(Measured::part); }
  void partEnds() override { toggle(Measured::part); }

  void toggle(Measured what) const {
    if (what == measured_) CALLGRIND_TOGGLE_COLLECT;
  }

  Measured measured_;
  std::uint64_t operations_ = 1;
  char const* failure_ = nullptr;
};

/// Counts at least so many operations, and prints how many they were.
int count(Benchmark const& benchmark, std::uint64_t operationsAtLeast) {
  CountedRun first(1, benchmark.measured);  // tells how many operations an iteration does
  benchmark.work(first);
  std::uint64_t const iterations =
      (operationsAtLeast + first.operations() - 1) / first.operations();

  // What is done at the first call, and at the first use of each key, is done.
  CountedRun again(iterations, benchmark.measured);
  benchmark.work(again);

  CountedRun counted(iterations, benchmark.measured);
  CALLGRIND_START_INSTRUMENTATION;
  benchmark.work(counted);
  CALLGRIND_STOP_INSTRUMENTATION;
  if (counted.failure() != nullptr) {
    std::fprintf(stderr, "%s: %s\n", benchmark.name.c_str(), counted.failure());
    return 1;
  }
  std::printf("%llu\n", static_cast<unsigned long long>(iterations * counted.operations()));
  return 0;
}

}  // namespace

void measure(std::string const& row, std::string const& variant, char const* who,
             std::function<void(Run&)> work, Measured measured) {
  benchmarks().push_back({row + "/" + variant + "/" + who, std::move(work), measured});
}

}  // namespace Kest::Bench

int main(int argc, char** argv) {
  using namespace Kest::Bench;
  if (argc < 2 || argc > 3) {
    std::fprintf(stderr, "usage: %s --list | ROW/VARIANT/WHO [OPERATIONS]\n", argv[0]);
    return 2;
  }
  measureOurs();
#ifdef KEST_BENCH_PEERS
  measurePeers();
  measureLimits();
#endif
  std::string_view const wanted = argv[1];
  bool const list = wanted == "--list";
  for (Benchmark const& benchmark : benchmarks()) {
    if (list) std::printf("%s\n", benchmark.name.c_str());
    if (benchmark.name == wanted) {
      return count(benchmark, argc == 3 ? std::strtoul(argv[2], nullptr, 10) : 1000);
    }
  }
  if (!list) std::fprintf(stderr, "%s: there is no %s\n", argv[0], argv[1]);
  return list ? 0 : 2;
}
