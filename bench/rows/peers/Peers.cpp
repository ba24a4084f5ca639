#include "bench/peers/Collections.h"
#include "bench/rows/Collections.h"
#include "bench/rows/Rows.h"

namespace Kest::Bench {

void measurePeers() {
  measureMap<Flat>();
  measureMap<Node>();
  measureMap<Unordered>();
  measureUpdates<Flat>();
  measureUpdates<UnorderedSignals2>();
  measureUpdates<UnorderedSigc>();
  measureTheirTexts();
  measureTheirGenericReads();
  measureTheirMachine();
}

}  // namespace Kest::Bench
