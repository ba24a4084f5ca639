#include "agent/slice/SliceFile.h"

#include "agent/slice/SliceFileReading.h"
#include "agent/slice/SliceJson.h"
#include "agent/slice/SliceStatements.h"

namespace Kest::Agent {

SliceForm sliceFormOf(std::string_view name) {
  return name.ends_with(".json") ? SliceForm::json : SliceForm::statements;
}

std::unique_ptr<SliceReader> sliceReader(std::string_view name, SliceForm form, SliceEnd end) {
  return form == SliceForm::json ? jsonSliceReader(name, end) : statementReader(name, end);
}

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
