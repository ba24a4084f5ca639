#pragma once

#include <optional>
#include <string>

#include "driver/sim/StateText.h"

namespace Hardware::Kest::Sim {

/// A file that holds a slice's state. It is replaced as a whole, and not synchronised to the disk:
/// it is to outlive the process, not the machine. No other process may keep the same file.
class StateFile {
 public:
  /// @throw Mox::RangeException for an empty path
  explicit StateFile(std::string path);

  /// None when the file is missing or empty.
  /// @throw Mox::RangeException "PATH...: ..." as `readState` says, or when it cannot be read
  std::optional<SliceState> load();

  /// Writes `state` if it is not what the file holds already. What cannot be written is reported on
  /// standard error and tried again with the next call; further failures are reported only after
  /// one that succeeded.
  void keep(SliceState const& state);

 private:
  std::string path_;
  SliceState held_;  ///< a missing or empty file holds an empty slice
  bool failing_ = false;
};

}  // namespace Hardware::Kest::Sim
