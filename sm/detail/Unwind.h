#pragma once

#include <utility>

/// What is done when a call is left by an exception, or in any way.
namespace Hardware::Kest::Slice::detail {

/// Runs `act`. If it throws, runs `undo`, which must not throw, and lets the exception go on.
template <class Act, class Undo>
void orUndo(Act const& act, Undo const& undo) {
  try {
    act();
  } catch (...) {
    undo();
    throw;
  }
}

/// Runs `act`, which must not throw, at the end of its scope, however that is left.
template <class Act>
class AtEnd {
 public:
  explicit AtEnd(Act act) : act_(std::move(act)) {}
  ~AtEnd() { act_(); }
  AtEnd(AtEnd const&) = delete;
  AtEnd& operator=(AtEnd const&) = delete;

 private:
  Act act_;
};

}  // namespace Hardware::Kest::Slice::detail
