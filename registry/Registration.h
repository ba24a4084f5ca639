#pragma once

#include "model/Export.h"

namespace Hardware::Kest::Slice {

/// Announces the library's namespaces, types and attributes to the global registry. The library
/// does so when it is loaded, once its types and its log message are there; a second call is
/// refused with a `Mox::RangeException`.
KEST_SLICE_DMA_API void moxInitKestSliceDmaSm();

}  // namespace Hardware::Kest::Slice
