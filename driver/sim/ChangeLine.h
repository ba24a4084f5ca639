#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "driver/sim/Export.h"

/// The lines of changes that follow the document in a state file: `+CHECK CHANGE`, CHECK eight
/// hexadecimal digits over CHANGE and all that is in front of the line. So a line holds in its
/// place after that document alone.
namespace Hardware::Kest::Sim {

/// What is in front of CHANGE.
inline constexpr std::size_t changePrefixBytes = 10;

/// The check over a document that no change follows.
KEST_SIM_API std::uint32_t checkOf(std::string_view document);

/// @param check over what is in front of the line; then over the line too
KEST_SIM_API std::string changeLine(std::string_view change, std::uint32_t& check);

}  // namespace Hardware::Kest::Sim
