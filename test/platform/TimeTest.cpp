#include "platform/mox/Time.h"

#include <gtest/gtest.h>

namespace Mox {
namespace {

TEST(TimeTest, IsRealUnlessAnotherSourceIsInPlace) {
  ManualTimeSource manual;
  manual.nowIs(7.5);
  timeSourceIs(&manual);
  EXPECT_EQ(&timeSource(), &manual);
  EXPECT_EQ(now(), 7.5);
  manual.advance(0.25);
  EXPECT_EQ(now(), 7.75);
  timeSourceIs(nullptr);
  EXPECT_NE(&timeSource(), &manual);
}

TEST(TimeTest, RealTimeMovesOnAndWaitingBringsItNearer) {
  TimeSource const& real = timeSource();
  double const first = real.now();
  while (real.now() == first) continue;
  EXPECT_GT(real.now(), first);
  EXPECT_EQ(real.waitTime(first), 0.0);
  EXPECT_EQ(real.waitTime(never), never);
  double const wait = real.waitTime(first + 100);
  EXPECT_GT(wait, 0.0);
  EXPECT_LT(wait, 100.0);
}

TEST(TimeTest, WaitingDoesNotBringManualTimeNearer) {
  ManualTimeSource manual;
  manual.nowIs(2.0);
  EXPECT_EQ(manual.waitTime(1.0), 0.0);
  EXPECT_EQ(manual.waitTime(2.0), 0.0);
  EXPECT_EQ(manual.waitTime(2.5), never);
  EXPECT_EQ(manual.waitTime(never), never);
}

}  // namespace
}  // namespace Mox
