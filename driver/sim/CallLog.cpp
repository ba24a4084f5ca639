#include "driver/sim/CallLog.h"

#include <ostream>
#include <utility>

namespace Hardware::Kest::Sim {

std::ostream& operator<<(std::ostream& out, Call const& call) {
  out << '#' << call.sequence << ' ' << call.operation << '(' << call.arguments << ')';
  if (hasResult(call.operation)) out << " = " << call.result;
  return call.injected ? out << " (fault)" : out;
}

std::ostream& operator<<(std::ostream& out, CallLog const& log) {
  for (Call const& call : log.calls_) out << call << '\n';
  return out;
}

void CallLog::add(Call call) {
  call.sequence = ++total_;
  calls_.push_back(std::move(call));
  if (calls_.size() > capacity_) calls_.pop_front();
}

void CallLog::clear() {
  calls_.clear();
  total_ = 0;
}

}  // namespace Hardware::Kest::Sim
