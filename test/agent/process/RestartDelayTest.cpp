#include "agent/process/RestartDelay.h"

#include <gtest/gtest.h>

#include <vector>

namespace Kest::Agent {
namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

/// The waits, in seconds, after runs of these lengths.
std::vector<long long> waits(std::vector<nanoseconds> const& runs) {
  RestartDelay delay;
  std::vector<long long> all;
  for (nanoseconds const run : runs) all.push_back(delay.after(run).count());
  return all;
}

using Waits = std::vector<long long>;

TEST(RestartDelay, GrowsWithTheQuickEndsInARowUpToHalfAMinute) {
  EXPECT_EQ(waits(std::vector<nanoseconds>(10, seconds(1))),
            (Waits{0, 0, 1, 2, 4, 8, 16, 30, 30, 30}));
}

TEST(RestartDelay, IsNoneAgainAfterARunOfTenSeconds) {
  seconds const quick(0);
  seconds const good(10);
  EXPECT_EQ(waits({quick, quick, quick, quick, good, quick, quick, quick}),
            (Waits{0, 0, 1, 2, 0, 0, 0, 1}));
  EXPECT_EQ(waits({quick, quick, good - nanoseconds(1), quick}), (Waits{0, 0, 1, 2}));
  EXPECT_EQ(waits({quick, good, quick, good, quick, good}), (Waits{0, 0, 0, 0, 0, 0}));
}

}  // namespace
}  // namespace Kest::Agent
