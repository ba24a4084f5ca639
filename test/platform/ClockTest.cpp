#include "platform/mox/Clock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "platform/mox/Dir.h"
#include "platform/mox/MoxType.h"
#include "test/platform/Journaled.h"

namespace Mox {
namespace {

using Test::Events;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Sleeper : public Clock::NotifieeConst {
 public:
  Sleeper(Events& events, std::string name) : events_(events), name_(std::move(name)) {}
  ~Sleeper() override { events_.push_back(name_ + " gone"); }

  void onTime() override {
    events_.push_back(name_);
    if (whenWoken) whenWoken(*this);
  }

  void onNotificationException(AttributeId attribute) override {
    events_.push_back(name_ + " failed in " + std::to_string(attribute));
    if (whenReported) whenReported();
  }

  std::function<void(Sleeper&)> whenWoken;
  std::function<void()> whenReported;

 private:
  Events& events_;
  std::string name_;
};

class ClockTest : public ::testing::Test {
 protected:
  ClockTest() { timeSourceIs(&time); }
  ~ClockTest() override { timeSourceIs(nullptr); }

  Ptr<Sleeper> sleeper(char const* name, double at) {
    Ptr<Sleeper> made(new Sleeper(events, name));
    made->notifierIs(clock);
    made->isRegisteredNotifieeIs(true);
    made->timeMinIs(at);
    return made;
  }

  void dispatchAt(double now) {
    time.nowIs(now);
    clock->dispatch();
  }

  ManualTimeSource time;
  Events events;
  Ptr<Clock> clock{new Clock("clock")};
};

TEST_F(ClockTest, WakesAtTheTimeAskedForAndNotBefore) {
  Ptr<Sleeper> const a = sleeper("a", 2.0);
  dispatchAt(1.9999999);
  EXPECT_THAT(events, IsEmpty());
  dispatchAt(2.0);
  EXPECT_THAT(events, ElementsAre("a"));
}

TEST_F(ClockTest, ANewObserverAsksForTheNextDispatch) {
  Ptr<Sleeper> const a(new Sleeper(events, "a"));
  EXPECT_EQ(a->timeMin(), 0.0);
  a->notifierIs(clock);
  a->isRegisteredNotifieeIs(true);
  dispatchAt(0);
  EXPECT_THAT(events, ElementsAre("a"));
}

TEST_F(ClockTest, AWakeUpIsUsedUpBeforeTheHandlerRuns) {
  Ptr<Sleeper> const a = sleeper("a", 1.0);
  double atHandler = 0;
  a->whenWoken = [&](Sleeper& self) { atHandler = self.timeMin(); };
  dispatchAt(5.0);
  EXPECT_EQ(atHandler, never);
  dispatchAt(6.0);
  EXPECT_THAT(events, ElementsAre("a"));
}

TEST_F(ClockTest, AHandlerThatAsksAgainIsWokenAtTheNextDispatchAtTheEarliest) {
  Ptr<Sleeper> const a = sleeper("a", 1.0);
  a->whenWoken = [](Sleeper& self) { self.timeMinIs(now()); };
  dispatchAt(1.0);
  EXPECT_THAT(events, ElementsAre("a"));
  EXPECT_EQ(clock->timeMin(), 1.0);
  dispatchAt(1.0);
  EXPECT_THAT(events, ElementsAre("a", "a"));
}

TEST_F(ClockTest, KnowsTheEarliestWakeUp) {
  EXPECT_EQ(clock->timeMin(), never);
  Ptr<Sleeper> const a = sleeper("a", 3.0);
  Ptr<Sleeper> b = sleeper("b", 2.0);
  EXPECT_EQ(clock->timeMin(), 2.0);
  b = nullptr;
  EXPECT_EQ(clock->timeMin(), 3.0);
  a->timeMinIs(never);
  EXPECT_EQ(clock->timeMin(), never);
  dispatchAt(1e300);
  EXPECT_THAT(events, ElementsAre("b gone"));
}

TEST_F(ClockTest, WakesByTimeThenInOrderOfRegistration) {
  Ptr<Sleeper> const a = sleeper("a", 2.0);
  Ptr<Sleeper> const b = sleeper("b", 1.0);
  Ptr<Sleeper> const c = sleeper("c", 2.0);
  Ptr<Sleeper> const d = sleeper("d", 1.0);
  a->isRegisteredNotifieeIs(false);
  a->isRegisteredNotifieeIs(true);
  dispatchAt(2.0);
  EXPECT_THAT(events, ElementsAre("b", "d", "c", "a"));
}

TEST_F(ClockTest, AnObserverThatIsNotRegisteredIsNotWoken) {
  Ptr<Sleeper> const a = sleeper("a", 1.0);
  a->isRegisteredNotifieeIs(false);
  EXPECT_FALSE(a->isRegisteredNotifiee());
  EXPECT_EQ(clock->timeMin(), never);
  dispatchAt(1.0);
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(ClockTest, AnObserverRegisteredTwiceIsWokenOnce) {
  Ptr<Sleeper> const a = sleeper("a", 1.0);
  a->isRegisteredNotifieeIs(true);
  dispatchAt(1.0);
  EXPECT_THAT(events, ElementsAre("a"));
}

TEST_F(ClockTest, WhatAHandlerDoesToOnesStillToBeWokenCounts) {
  Ptr<Sleeper> const a = sleeper("a", 1.0);
  Ptr<Sleeper> const left = sleeper("left", 1.0);
  Ptr<Sleeper> const delayed = sleeper("delayed", 1.0);
  Ptr<Sleeper> const moved = sleeper("moved", 1.0);
  Ptr<Sleeper> released = sleeper("released", 1.0);
  Ptr<Sleeper> const stays = sleeper("stays", 1.0);
  Ptr<Clock> const other(new Clock("other"));
  Ptr<Sleeper> joined;
  a->whenWoken = [&](Sleeper&) {
    left->isRegisteredNotifieeIs(false);
    delayed->timeMinIs(2.0);
    moved->notifierIs(other);
    released = nullptr;
    joined = sleeper("joined", 0.0);
  };
  dispatchAt(1.0);
  EXPECT_THAT(events, ElementsAre("a", "stays", "released gone"));
  events.clear();
  clock->dispatch();
  EXPECT_THAT(events, ElementsAre("joined"));
  events.clear();
  other->dispatch();
  EXPECT_THAT(events, ElementsAre("moved"));
}

TEST_F(ClockTest, AnObserverThatReleasesItselfLivesThroughItsHandler) {
  Ptr<Sleeper> a = sleeper("a", 1.0);
  a->whenWoken = [&](Sleeper&) {
    a = nullptr;
    events.push_back("handled");
  };
  dispatchAt(1.0);
  EXPECT_THAT(events, ElementsAre("a", "handled", "a gone"));
  EXPECT_EQ(clock->timeMin(), never);
}

TEST_F(ClockTest, LivesThroughADispatchThatLetsGoOfIt) {
  Ptr<Sleeper> const a = sleeper("a", 1.0);
  Ptr<Sleeper> const b = sleeper("b", 1.0);
  a->whenWoken = [&](Sleeper&) {
    clock = nullptr;
    a->notifierIs(nullptr);
    b->notifierIs(nullptr);
  };
  dispatchAt(1.0);
  EXPECT_THAT(events, ElementsAre("a"));
}

TEST_F(ClockTest, WhatAHandlerThrowsIsReportedToItAlone) {
  Ptr<Sleeper> const a = sleeper("a", 1.0);
  Ptr<Sleeper> const b = sleeper("b", 1.0);
  unsigned depth = 0;
  a->whenWoken = [&](Sleeper&) {
    depth = ExpectationScope::depth();
    throw std::runtime_error("a");
  };
  dispatchAt(1.0);
  EXPECT_THAT(events, ElementsAre("a", "a failed in 258", "b"));
  EXPECT_EQ(depth, 1U);
  EXPECT_EQ(ExpectationScope::depth(), 0U);
}

TEST_F(ClockTest, WhatAReportThrowsReachesNobody) {
  Ptr<Sleeper> const a = sleeper("a", 1.0);
  Ptr<Sleeper> const b = sleeper("b", 1.0);
  a->whenWoken = [](Sleeper&) { throw std::runtime_error("handler"); };
  a->whenReported = [] { throw std::runtime_error("report"); };
  dispatchAt(1.0);
  EXPECT_THAT(events, ElementsAre("a", "a failed in 258", "b"));
}

TEST_F(ClockTest, ARegisteredObserverMovesBetweenClocks) {
  Ptr<Sleeper> const a = sleeper("a", 1.0);
  Ptr<Clock> const other(new Clock("other"));
  a->notifierIs(other);
  EXPECT_EQ(a->notifier(), other);
  EXPECT_TRUE(a->isRegisteredNotifiee());
  EXPECT_EQ(clock->timeMin(), never);
  EXPECT_EQ(other->timeMin(), 1.0);
  EXPECT_EQ(clock->notifierReferences(), 0U);
  a->notifierIs(nullptr);
  EXPECT_EQ(other->timeMin(), never);
  a->notifierIs(clock);
  EXPECT_EQ(clock->timeMin(), 1.0);
}

TEST_F(ClockTest, WhatIsNoClockCountsAsNone) {
  Ptr<Sleeper> const a = sleeper("a", 1.0);
  a->notifierIs(Ptr<PtrInterface const>(new Dir("dir")));
  EXPECT_EQ(a->notifier(), nullptr);
  EXPECT_EQ(a->name(), "");
  EXPECT_EQ(clock->timeMin(), never);
}

TEST_F(ClockTest, AnObserverIsNamedAfterItsClock) {
  EXPECT_EQ(sleeper("a", 1.0)->name(), "clock");
  EXPECT_EQ(clock->fwkType(), Clock::_fwkType());
  EXPECT_EQ(clock->fwkType()->fullName(), "Mox::Clock");
}

}  // namespace
}  // namespace Mox
