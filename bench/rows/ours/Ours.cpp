#include "bench/Ours.h"
#include "bench/rows/Collections.h"
#include "bench/rows/Rows.h"

namespace Kest::Bench {

void measureOurs() {
  measureMap<Ours>();
  measureUpdates<Ours>();
  measureOurTexts();
  measureOurGenericReads();
  measureOurMachine();
}

}  // namespace Kest::Bench
