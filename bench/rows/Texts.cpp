#include "bench/rows/Rows.h"

namespace Kest::Bench {

void measureTexts() {}

}  // namespace Kest::Bench
