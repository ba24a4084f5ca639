#pragma once

#include <gtest/gtest.h>

#include <new>

#include "test/exhaustion/Shortage.h"

namespace Exhaustion {

enum class End { done, badAlloc };

template <class Act, class Scene>
End endOf(Act const& act, Scene& scene) {
  try {
    act(scene);
    return End::done;
  } catch (std::bad_alloc const&) {
    return End::badAlloc;
  }
}

/// Lets `act(scene)` run out of memory at its allocation of that number, on a scene that
/// `prepare()` makes, and hands both to `judge(scene, end)`. Returns whether there was such an
/// allocation.
template <class Prepare, class Act, class Judge>
bool runShort(std::size_t at, Lasting lasting, Prepare const& prepare, Act const& act,
              Judge const& judge) {
  auto scene = prepare();
  End end = End::done;
  bool hasCome = false;
  {
    Shortage const shortage(at, lasting);
    end = endOf(act, scene);
    hasCome = shortage.hasCome();
  }
  judge(scene, end);
  return hasCome;
}

/// Lets `act` run out of memory at each of its allocations, for once and for good, until it gets
/// through. Every attempt must give back what it took; what is made once for the whole process may
/// stay behind the first attempt that makes it.
template <class Prepare, class Act, class Judge>
void atEveryAllocation(Prepare const& prepare, Act const& act, Judge const& judge) {
  for (Lasting const lasting : {Lasting::once, Lasting::forGood}) {
    bool hasCome = true;
    for (std::size_t at = 1; hasCome && !testing::Test::HasFailure(); ++at) {
      SCOPED_TRACE(testing::Message() << "at allocation " << at
                                      << (lasting == Lasting::once ? ", once" : ", for good"));
      std::size_t const before = liveAllocations();
      hasCome = runShort(at, lasting, prepare, act, judge);
      if (liveAllocations() == before || testing::Test::HasFailure()) continue;
      std::size_t const again = liveAllocations();
      hasCome = runShort(at, lasting, prepare, act, judge);
      EXPECT_EQ(liveAllocations(), again) << "memory leaks";
    }
  }
}

}  // namespace Exhaustion
