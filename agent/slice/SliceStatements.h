#pragma once

#include <string_view>

#include "agent/slice/SliceFile.h"

namespace Kest::Agent {

/// Reads a slice in its text form: statements, one a line.
Slice parseStatements(std::string_view name, std::string_view text);

}  // namespace Kest::Agent
