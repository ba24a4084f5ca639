#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <iosfwd>
#include <string>

#include "driver/sim/Export.h"
#include "driver/sim/Operation.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Sim {

/// One call of a driver operation.
struct Call {
  Operation operation;
  Mox::String8 name;           ///< interface or device; empty for a dump
  std::string arguments;       ///< as text, the name included
  int result = 0;              ///< meaningless where the operation has none
  bool injected = false;       ///< the fault table answered, and nothing else happened
  std::uint64_t sequence = 0;  ///< counted from 1 by the log
};

KEST_SIM_API std::ostream& operator<<(std::ostream& out, Call const& call);

/// The last calls, oldest first; the oldest goes when there are more than `capacity`.
class CallLog {
 public:
  static constexpr std::size_t defaultCapacity = 1000;

  explicit CallLog(std::size_t capacity) noexcept : capacity_(capacity) {}

  void add(Call call);
  void clear();

  std::deque<Call> const& calls() const noexcept { return calls_; }
  /// All calls ever, the dropped ones included.
  std::uint64_t total() const noexcept { return total_; }
  std::uint64_t dropped() const noexcept { return total_ - calls_.size(); }

  /// A line for each call.
  friend KEST_SIM_API std::ostream& operator<<(std::ostream& out, CallLog const& log);

 private:
  std::size_t capacity_;
  std::uint64_t total_ = 0;
  std::deque<Call> calls_;
};

}  // namespace Hardware::Kest::Sim
