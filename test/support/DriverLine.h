#pragma once

#include "platform/fru/PciHam.h"
#include "platform/hardware/kest/FapType.h"
#include "test/support/Text.h"

namespace Support {

inline std::string argumentText(Mox::String8 const& argument) {
  return text("'", argument.view(), "'");
}
inline std::string argumentText(char const* argument) {
  return text("'", argument, "'");
}
inline std::string argumentText(Mox::Ptr<Fru::PciHam const> const& handle) {
  return handle ? argumentText(handle->name().string()) : "null";
}
inline std::string argumentText(Hardware::Kest::FapType type) {
  return text(stringValue(type).view());
}
template <std::integral Number>
std::string argumentText(Number number) {
  return text(number);
}

/// A driver call as journals show it: "kestDmaNativeVlan('et1', false, 4096)". A handle is shown as
/// its name, or null.
template <class... Arguments>
std::string driverLine(char const* operation, Mox::String8 const& name,
                       Arguments const&... others) {
  std::string line = text(operation, "('", name.view(), "'");
  (line.append(", ").append(argumentText(others)), ...);
  return line + ")";
}

}  // namespace Support
