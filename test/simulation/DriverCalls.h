#pragma once

#include <functional>

#include "platform/mox/String8.h"
#include "test/simulation/Driver.h"
#include "test/support/Journal.h"

namespace Simulation {

/// The driver that the nine operations of the program reach, one at a time. Each call is written to
/// the journal before it is answered.
class DriverCalls {
 public:
  /// `apply` does what an answer's effect asks for.
  DriverCalls(Driver& driver, Support::Journal& journal, std::function<void(Effect)> apply);
  ~DriverCalls();
  DriverCalls(DriverCalls const&) = delete;
  DriverCalls& operator=(DriverCalls const&) = delete;

  static DriverCalls& current();

  void add(std::string line) { journal_.add(std::move(line)); }
  /// Answers the call of `operation` for `name` that `line` shows.
  int called(char const* operation, Mox::String8 const& name, std::string line, unsigned vlan);
  bool isUp(Mox::String8 const& devName) const;

 private:
  Driver& driver_;
  Support::Journal& journal_;
  std::function<void(Effect)> apply_;
};

}  // namespace Simulation
