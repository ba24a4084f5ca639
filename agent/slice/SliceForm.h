#pragma once

#include <memory>
#include <string_view>

#include "agent/slice/SliceReader.h"

namespace Kest::Agent {

/// The two forms of a slice file.
enum class SliceForm { statements, json };

/// JSON for a name that ends in `.json`.
SliceForm sliceFormOf(std::string_view name);

/// A reader of that form.
/// @param name stands for the file in errors
std::unique_ptr<SliceReader> sliceReader(std::string_view name, SliceForm form, SliceEnd end);

}  // namespace Kest::Agent
