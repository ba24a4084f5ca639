#include "platform/mox/Notifiee.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/mox/Activity.h"
#include "test/platform/Journaled.h"

namespace Mox {
namespace {

using Test::Events;
using Test::Journaled;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Observer : public NotifieeConst {
 public:
  void isRegisteredNotifieeIs(bool) const override {}
  String8 name() const override { return {}; }
  using NotifieeConst::rawNotifier;
};

class NotifieeTest : public ::testing::Test {
 protected:
  Events events;
  Ptr<Journaled> first{new Journaled(events, "first")};
  Ptr<Journaled> second{new Journaled(events, "second")};
  Ptr<Observer> observer{new Observer};
};

TEST_F(NotifieeTest, HoldsItsNotifierWithAnObserversReference) {
  EXPECT_EQ(observer->rawNotifier(), nullptr);
  observer->notifierIs(first);
  EXPECT_EQ(observer->rawNotifier(), first.ptr());
  EXPECT_EQ(first->references(), 2U);
  EXPECT_EQ(first->notifierReferences(), 1U);
  first = nullptr;
  EXPECT_THAT(events, IsEmpty());
  observer->notifierIs(nullptr);
  EXPECT_EQ(observer->rawNotifier(), nullptr);
  EXPECT_THAT(events, ElementsAre("first gone"));
}

TEST_F(NotifieeTest, LetsGoOfTheOldNotifierForANewOne) {
  observer->notifierIs(first);
  observer->notifierIs(second);
  EXPECT_EQ(first->references(), 1U);
  EXPECT_EQ(first->notifierReferences(), 0U);
  EXPECT_EQ(second->notifierReferences(), 1U);
}

TEST_F(NotifieeTest, TheSameNotifierAgainIsHeldOnce) {
  observer->notifierIs(first);
  observer->notifierIs(first);
  EXPECT_EQ(first->references(), 2U);
  EXPECT_EQ(first->notifierReferences(), 1U);
}

TEST_F(NotifieeTest, LetsGoOfItsNotifierWhenItGoes) {
  observer->notifierIs(first);
  first = nullptr;
  observer = nullptr;
  EXPECT_THAT(events, ElementsAre("first gone"));
}

TEST(ExpectationScopeTest, IsOpenWhileItsBlockRunsHoweverThatEnds) {
  EXPECT_EQ(ExpectationScope::depth(), 0U);
  try {
    ExpectationScope const outer;
    ExpectationScope const inner;
    EXPECT_EQ(ExpectationScope::depth(), 2U);
    throw std::runtime_error("leaves both");
  } catch (std::runtime_error const&) {
    EXPECT_EQ(ExpectationScope::depth(), 0U);
  }
}

TEST(ActivityManagerTest, IsOneAndHasAClock) {
  Ptr<ActivityManagerConfig> const manager = activityManager();
  EXPECT_EQ(activityManager(), manager);
  Ptr<Clock> const own = manager->clock();
  ASSERT_TRUE(own);
  EXPECT_EQ(own->fullName(), "clock");

  Ptr<Clock> const other(new Clock("other"));
  manager->clockIs(other);
  EXPECT_EQ(activityManager()->clock(), other);
  manager->clockIs(own);
}

}  // namespace
}  // namespace Mox
