#include "agent/process/SignOfLife.h"

#include <gtest/gtest.h>

namespace Kest::Agent {
namespace {

TEST(LifeLine, HoldsSignsUntilTheyAreTakenHoweverMany) {
  giveSignOfLife();  // which nobody watches for
  LifeLine const life;
  giveSignOfLife();
  EXPECT_FALSE(life.taken());
  life.isWatched();
  EXPECT_FALSE(life.taken());
  for (int signs = 0; signs < 200000; ++signs) giveSignOfLife();  // more than a pipe holds
  EXPECT_TRUE(life.taken());
  EXPECT_FALSE(life.taken());
}

TEST(LifeLine, IsNotWrittenToOnceItIsGone) {
  { LifeLine().isWatched(); }
  LifeLine const other;  // may have the descriptors of the first
  giveSignOfLife();
  EXPECT_FALSE(other.taken());
}

TEST(Heartbeat, GivesASignAtOnceAndEveryTwoSecondsThatTheClockIsDispatched) {
  Mox::ManualTimeSource time;
  time.nowIs(100);
  Mox::timeSourceIs(&time);
  LifeLine const life;
  life.isWatched();
  Mox::Ptr<Mox::Clock> const clock(new Mox::Clock("clock"));
  Mox::Ptr<Heartbeat> const heartbeat(new Heartbeat(clock));
  auto const givesOne = [&] {
    clock->dispatch();
    return life.taken();
  };
  EXPECT_TRUE(givesOne());
  EXPECT_FALSE(givesOne());
  time.advance(1.9);
  EXPECT_FALSE(givesOne());
  time.advance(0.1);
  EXPECT_TRUE(givesOne());
  time.advance(1000);
  EXPECT_TRUE(givesOne());
  EXPECT_FALSE(givesOne());
  heartbeat->notifierIs(nullptr);
  time.advance(2);
  EXPECT_FALSE(givesOne());
  Mox::timeSourceIs(nullptr);
}

}  // namespace
}  // namespace Kest::Agent
