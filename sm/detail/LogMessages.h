#pragma once

#include "platform/mox/Log.h"

/// The library's log messages. Each is defined at the first call, which the library makes when it
/// is loaded.
namespace Hardware::Kest::Slice::detail {

/// A device went up or down unexpectedly. Arguments: device, expected and actual state.
Mox::LogHandle const& deviceStateError();

}  // namespace Hardware::Kest::Slice::detail
