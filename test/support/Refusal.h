#pragma once

#include <string>

#include "platform/mox/RangeException.h"

namespace Test {

/// The text with which `attempt()` is refused; empty when it is not.
template <class Attempt>
std::string refusal(Attempt const& attempt) {
  try {
    attempt();
    return {};
  } catch (Mox::RangeException const& exception) {
    return std::string(exception.text().view());
  }
}

}  // namespace Test
