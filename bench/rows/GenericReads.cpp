#include "bench/rows/Rows.h"

namespace Kest::Bench {

void measureGenericReads() {}

}  // namespace Kest::Bench
