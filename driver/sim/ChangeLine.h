#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "driver/sim/Export.h"

/// The lines of changes that follow the document in a state file: `+CHECK CHANGE`, CHECK eight
/// hexadecimal digits over CHANGE and everything before the line. So a line is valid only where it
/// was written: after this document and these changes.
namespace Hardware::Kest::Sim {

/// The length of `+CHECK` and the blank after it.
inline constexpr std::size_t changePrefixBytes = 10;

/// The check over a document alone.
KEST_SIM_API std::uint32_t checkOf(std::string_view document);

/// A line, with its end.
/// @param check over everything before the line; afterwards over the line too
KEST_SIM_API std::string changeLine(std::string_view change, std::uint32_t& check);

}  // namespace Hardware::Kest::Sim
