#pragma once

#include <string_view>

#include "agent/slice/SliceFile.h"

namespace Kest::Agent {

/// Reads a slice in its JSON form. What is refused is named by its JSON pointer too.
Slice parseJsonSlice(std::string_view name, std::string_view text);

}  // namespace Kest::Agent
