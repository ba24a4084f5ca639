#pragma once

#include <string_view>

#include "agent/slice/Slice.h"

namespace Kest::Agent {

/// Reads a slice from the bytes of a file, as they come. What is refused is refused with a
/// `Text::FileError`; then the reader is given up.
class SliceReader {
 public:
  virtual ~SliceReader() = default;

  /// The next bytes, cut anywhere. For 16 KiB it takes a millisecond at most.
  virtual void take(std::string_view bytes) = 0;
  /// After the last byte: goes on for a millisecond at most; false when the slice is whole.
  virtual bool goOn() = 0;
  /// The slice, once.
  virtual Slice slice() = 0;
};

/// What `SliceReader::take` is best given at once.
inline constexpr std::size_t sliceBytesAtOnce = std::size_t{16} << 10U;

}  // namespace Kest::Agent
