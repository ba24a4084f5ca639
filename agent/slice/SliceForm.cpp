#include "agent/slice/SliceForm.h"

#include "agent/slice/SliceJson.h"
#include "agent/slice/SliceStatements.h"

namespace Kest::Agent {

SliceForm sliceFormOf(std::string_view name) {
  return name.ends_with(".json") ? SliceForm::json : SliceForm::statements;
}

std::unique_ptr<SliceReader> sliceReader(std::string_view name, SliceForm form, SliceEnd end) {
  return form == SliceForm::json ? jsonSliceReader(name, end) : statementReader(name, end);
}

}  // namespace Kest::Agent
