#include "test/fuzz/SliceTexts.h"

/// Slice files in their JSON form.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  Fuzz::readSlice("fuzz.json", Fuzz::Input(bytes, size).rest(), [](Fuzz::Slice const& slice) {
    Fuzz::requireWrittenAsStatements(slice);
    Fuzz::requireWrittenAsJson(slice, false);
  });
  return 0;
}
