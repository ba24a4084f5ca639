#include "test/fuzz/SliceTexts.h"

/// Slice files in their text form.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  Fuzz::readSlice("fuzz.slice", Fuzz::Input(bytes, size).rest(), [](Fuzz::Slice const& slice) {
    Fuzz::requireWrittenAsStatements(slice);
    Fuzz::requireWrittenAsJson(slice, true);
  });
  return 0;
}
