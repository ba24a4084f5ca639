#include <benchmark/benchmark.h>

#include "bench/rows/Rows.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  Kest::Bench::measureLimits();
  Kest::Bench::measureCollections();
  Kest::Bench::measureTexts();
  Kest::Bench::measureGenericReads();
  Kest::Bench::measureMachine();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
