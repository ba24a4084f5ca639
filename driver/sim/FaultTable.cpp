#include "driver/sim/FaultTable.h"

#include <algorithm>
#include <ostream>

#include "platform/mox/Strep.h"

namespace Hardware::Kest::Sim {

using Mox::String8;

FaultTable::Outcome FaultTable::called(Operation operation, String8 const& name) {
  Outcome outcome{answer(operation, name), {}};
  for (Flip& flip : flips_) {
    if (flip.calls.matches(operation, name) && --flip.after == 0) {
      outcome.flipped.push_back(flip.devName);
    }
  }
  std::erase_if(flips_, [](Flip const& flip) { return flip.after == 0; });
  return outcome;
}

std::optional<int> FaultTable::answer(Operation operation, String8 const& name) {
  auto const fault = std::find_if(faults_.begin(), faults_.end(), [&](Fault const& candidate) {
    return candidate.calls.matches(operation, name);
  });
  if (fault == faults_.end()) return std::nullopt;
  int const answer = fault->answer;
  if (fault->times && --*fault->times == 0) faults_.erase(fault);
  return answer;
}

namespace {

std::ostream& operator<<(std::ostream& out, CallPattern const& calls) {
  return out << calls.operation << ' ' << (calls.name ? Mox::valueToStrep(*calls.name) : "*");
}

}  // namespace

std::ostream& operator<<(std::ostream& out, FaultTable const& table) {
  for (Fault const& fault : table.faults_) {
    out << "fail " << fault.calls << ' ' << fault.answer;
    fault.times ? out << " times " << *fault.times << '\n' : out << " always\n";
  }
  for (Flip const& flip : table.flips_) {
    out << "flip " << Mox::valueToStrep(flip.devName) << " after " << flip.after << ' '
        << flip.calls << '\n';
  }
  return out;
}

}  // namespace Hardware::Kest::Sim
