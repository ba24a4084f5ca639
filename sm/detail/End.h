#pragma once

/// The end of the process where nothing can be repaired in place. The agent's restart is the
/// recovery.
namespace Hardware::Kest::Slice::detail {

/// Runs one step of the last report. The process ends whether it succeeds or not, so what it throws
/// is dropped.
template <class Step>
void lastStep(Step const& step) noexcept {
  try {
    step();
  } catch (...) {  // NOLINT(bugprone-empty-catch): the steps that are left matter more
  }
}

/// Says why in one line on standard error, and aborts.
[[noreturn]] void endProcess(char const* why) noexcept;

}  // namespace Hardware::Kest::Slice::detail
