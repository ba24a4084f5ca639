#include <benchmark/benchmark.h>

#include <ctime>
#include <utility>

#include "bench/Run.h"
#include "bench/rows/Rows.h"

/// Times what is measured: Google Benchmark's program.
namespace Kest::Bench {

namespace {

/// Seconds of a clock that does not go on in other processes' time.
double now() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

class TimedRun : public Run {
 public:
  explicit TimedRun(benchmark::State& state)
      : Run(static_cast<std::uint64_t>(state.max_iterations)), state_(state) {}

  void operationsAre(std::size_t operations) override {
    state_.counters["operations"] = static_cast<double>(operations);
  }
  void fail(char const* why) override { state_.SkipWithError(why); }

 private:
  // All iterations are one batch: asked for the first time the state starts its clock, and asked
  // again it stops it.
  void loopStarts() override { state_.KeepRunningBatch(state_.max_iterations); }
  void loopEnds() override { state_.KeepRunningBatch(state_.max_iterations); }

  void partStarts() override { start_ = now(); }
  void partEnds() override { state_.SetIterationTime(now() - start_); }

  benchmark::State& state_;
  double start_ = 0;
};

}  // namespace

void measure(std::string const& row, std::string const& variant, char const* who,
             std::function<void(Run&)> work, Measured measured) {
  auto* const registered = benchmark::RegisterBenchmark(
      (row + "/" + variant + "/" + who).c_str(), [work = std::move(work)](benchmark::State& state) {
        TimedRun run(state);
        work(run);
      });
  if (measured == Measured::part) registered->UseManualTime();
}

}  // namespace Kest::Bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  Kest::Bench::measureLimits();
  Kest::Bench::measureOurs();
  Kest::Bench::measurePeers();
  Kest::Bench::measureGrowth();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
