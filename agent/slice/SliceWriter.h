#pragma once

#include <memory>
#include <string>
#include <vector>

#include "agent/slice/SliceForm.h"

namespace Kest::Agent {

/// Writes a configuration as a slice file, which reads back to the same configuration: handles
/// first, then what is of devices, then what is of ports, keys in the order in which people number
/// things, and `end`. JSON has one entry a line.
///
/// Handles are those that the configuration's devices refer to, and those whose paths are given
/// besides. What the configuration holds against the rules of slice files (`SliceRules.h`), because
/// another writer put it there, is written as it is; it is refused when it is read. The text is
/// UTF-8: in statements other bytes are escaped; JSON cannot hold them.
class SliceWriter {
 public:
  /// What becomes of a string that is no UTF-8, in JSON.
  enum class NoUtf8 { refused, replaced };

  /// Entries of the configuration that come or go while it is written may be missing.
  SliceWriter(Mox::Ptr<Config const> config, std::vector<Mox::String8> handles, SliceForm form,
              NoUtf8 noUtf8 = NoUtf8::refused);
  ~SliceWriter();
  SliceWriter(SliceWriter const&) = delete;
  SliceWriter& operator=(SliceWriter const&) = delete;

  /// Appends whole lines for a millisecond at most; false when the text is whole.
  /// `Mox::RangeException` for a string that is no UTF-8, if it is refused.
  bool goOn(std::string& text);
  /// About how many bytes of memory the keys take that are still to be written.
  std::size_t held() const;

 private:
  class Walk;
  std::unique_ptr<Walk> walk_;
};

/// The whole text at once, as statements.
std::string sliceText(Config const& config, std::vector<Mox::String8> const& handles = {});
/// The same as JSON.
std::string sliceJson(Config const& config, std::vector<Mox::String8> const& handles = {});

}  // namespace Kest::Agent
