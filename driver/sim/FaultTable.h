#pragma once

#include <iosfwd>
#include <optional>
#include <utility>
#include <vector>

#include "driver/sim/Operation.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Sim {

/// Which calls a fault is about.
struct CallPattern {
  Operation operation;
  std::optional<Mox::String8> name;  ///< interface or device; none: any

  bool matches(Operation called, Mox::String8 const& calledName) const {
    return called == operation && (!name || *name == calledName);
  }
};

/// Calls that are answered with an error number instead of being carried out.
struct Fault {
  CallPattern calls;
  int answer;
  std::optional<unsigned> times;  ///< calls still to be answered so; none: always
};

/// A device that changes its state by itself once so many calls have been made.
struct Flip {
  Mox::String8 devName;
  unsigned after;  ///< calls still to be made
  CallPattern calls;
};

/// What is to go wrong. When several faults match a call, the one that was added first answers it,
/// and only its count goes down. A fault or flip that is used up leaves the table.
class FaultTable {
 public:
  struct Outcome {
    std::optional<int> answer;          ///< none: the call is carried out
    std::vector<Mox::String8> flipped;  ///< devices to flip when the call is over
  };

  void add(Fault fault) { faults_.push_back(std::move(fault)); }
  void add(Flip flip) { flips_.push_back(std::move(flip)); }

  /// Counts one call.
  Outcome called(Operation operation, Mox::String8 const& name);

  std::size_t size() const noexcept { return faults_.size() + flips_.size(); }

  /// Line by line, as a fault file has it.
  friend std::ostream& operator<<(std::ostream& out, FaultTable const& table);

 private:
  std::optional<int> answer(Operation operation, Mox::String8 const& name);

  std::vector<Fault> faults_;
  std::vector<Flip> flips_;
};

}  // namespace Hardware::Kest::Sim
