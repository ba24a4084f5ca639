#include "bench/rows/Rows.h"

namespace Kest::Bench {

void measureMachine() {}

}  // namespace Kest::Bench
