#include "bench/rows/Texts.h"

#include "bench/Ours.h"
#include "bench/rows/Rows.h"
#include "platform/mox/Strep.h"

namespace Kest::Bench {

void measureOurTexts() {
  for (Shape const shape : {shortNames, longNames}) {
    measureOver("g", shape, "ours", recordOf,
                [](Ours::Record const& record) { return valueToStrep(record); });
    measureOver(
        "h", shape, "ours", [](Port const& port) { return valueToStrep(recordOf(port)); },
        [](Mox::String8 const& text) { return Mox::strepToValue<Ours::Record>(text); });
  }
}

}  // namespace Kest::Bench
