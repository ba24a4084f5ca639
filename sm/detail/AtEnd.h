#pragma once

#include <utility>

namespace Hardware::Kest::Slice::detail {

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
