#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "driver/sim/StateText.h"

namespace Hardware::Kest::Sim {

/// A file that holds a slice's state. What changes is added at its end, so that a change costs the
/// same whatever the state's size; when the changes have grown as large as the document in front of
/// them, the file is replaced by a document. A process that begins with a file replaces it at its
/// first change. The file is not synchronised to the disk: it must outlive the process, not the
/// machine. No other process may keep the same file.
class StateFile {
 public:
  /// @throw Mox::RangeException for an empty path
  explicit StateFile(std::string path);

  /// None when the file is missing or empty.
  /// @throw Mox::RangeException "PATH...: ..." as `readState` says, or when it cannot be read
  std::optional<SliceState> load() const;

  /// @param change leads from the state of the previous call to `state`
  /// A change that cannot be written is reported on standard error and tried again with the next
  /// call, even if that has no change of its own. Further failures are reported only after a call
  /// that succeeded.
  void keep(SliceState const& state, Change const& change);
  /// The file holds `state`, whatever it held before.
  void replace(SliceState const& state);

 private:
  bool append(Change const& change);

  std::string path_;
  std::size_t documentBytes_ = 0;  ///< 0: this process has not written the file
  std::size_t bytes_ = 0;          ///< of the file
  std::uint32_t check_ = 0;        ///< of the file
  bool failing_ = false;
};

}  // namespace Hardware::Kest::Sim
