#pragma once

/// Each registers the benchmarks of some rows of the table.
namespace Kest::Bench {

void measureLimits();
void measureCollections();
void measureTexts();
void measureGenericReads();
void measureMachine();

}  // namespace Kest::Bench
