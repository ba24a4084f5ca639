#include "agent/slice/SliceFile.h"

#include "agent/slice/SliceFileReading.h"
#include "agent/slice/SliceForm.h"

namespace Kest::Agent {

Slice parseSlice(std::string_view name, std::string_view text) {
  auto const reader = sliceReader(name, sliceFormOf(name), SliceEnd::optional);
  reader->take(text);
  while (reader->goOn()) {
  }
  return reader->slice();
}

Slice readSliceFile(std::string const& path, SliceEnd end) {
  SliceFileReading reading(path, end);
  while (reading.goOn()) {
  }
  return reading.slice();
}

}  // namespace Kest::Agent
