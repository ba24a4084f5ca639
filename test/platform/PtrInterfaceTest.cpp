#include "platform/mox/PtrInterface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "platform/mox/Ptr.h"
#include "test/platform/Journaled.h"

namespace Mox {
namespace {

using Test::Events;
using Test::Journaled;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Observed : public Journaled {
 public:
  explicit Observed(Events& events) : Journaled(events, "object") {}

  void zeroReferencesIs(bool zero) override {
    events_.push_back(zero ? "told" : "told false");
    if (whenTold) whenTold(*this);
  }

  std::function<void(Observed&)> whenTold;
};

class PtrInterfaceTest : public ::testing::Test {
 protected:
  Events events;
  Ptr<Observed> object{new Observed(events)};
  Observed* raw = object.ptr();
};

TEST_F(PtrInterfaceTest, CountsAllReferencesAndThoseOfObserversAmongThem) {
  Ptr<Observed> const second = object;
  raw->notifierReferenceNew();
  EXPECT_EQ(raw->references(), 3U);
  EXPECT_EQ(raw->notifierReferences(), 1U);
  raw->notifierReferenceDel();
  EXPECT_EQ(raw->references(), 2U);
  EXPECT_EQ(raw->notifierReferences(), 0U);
}

TEST_F(PtrInterfaceTest, GoesWithItsLastReferenceUntoldWhenNobodyObserves) {
  Ptr<Observed> second = object;
  object = nullptr;
  EXPECT_THAT(events, IsEmpty());
  second = nullptr;
  EXPECT_THAT(events, ElementsAre("object gone"));
}

TEST_F(PtrInterfaceTest, IsToldWhenOnlyObserversAreLeftAndLivesUntilTheyGo) {
  raw->notifierReferenceNew();
  raw->notifierReferenceNew();
  object = nullptr;
  EXPECT_THAT(events, ElementsAre("told"));
  raw->notifierReferenceDel();
  EXPECT_THAT(events, ElementsAre("told"));
  raw->notifierReferenceDel();
  EXPECT_THAT(events, ElementsAre("told", "object gone"));
}

TEST_F(PtrInterfaceTest, IsToldAgainAfterItWasReferencedFromOutsideAnew) {
  raw->notifierReferenceNew();
  object = nullptr;
  object = Ptr<Observed>(raw);
  object = nullptr;
  EXPECT_THAT(events, ElementsAre("told", "told"));
  raw->notifierReferenceDel();
}

TEST_F(PtrInterfaceTest, IsNotToldWhenWhatAnObserverLentHasGone) {
  raw->notifierReferenceNew();
  object = nullptr;
  raw->notifierReferenceLent();
  {
    Ptr<Observed> const lent(raw);
    Ptr<Observed> const copy = lent;
  }
  EXPECT_THAT(events, ElementsAre("told"));
  object = Ptr<Observed>(raw);
  raw->notifierReferenceLent();  // it is held outside: nothing changes
  object = nullptr;
  EXPECT_THAT(events, ElementsAre("told", "told"));
  raw->notifierReferenceDel();
}

TEST_F(PtrInterfaceTest, IsNotToldWhenAnObserverLeavesIt) {
  raw->notifierReferenceNew();
  raw->notifierReferenceNew();
  raw->notifierReferenceDel();
  EXPECT_THAT(events, IsEmpty());
  raw->notifierReferenceDel();
}

TEST_F(PtrInterfaceTest, IsNotToldWhileItIsBeingTold) {
  raw->whenTold = [](Observed& self) { Ptr<Observed> const passing(&self); };
  raw->notifierReferenceNew();
  object = nullptr;
  EXPECT_THAT(events, ElementsAre("told"));
  raw->notifierReferenceDel();
}

TEST_F(PtrInterfaceTest, IsToldAgainWhenAReferenceTakenWhileItWasToldGoes) {
  raw->whenTold = [this](Observed& self) {
    object = Ptr<Observed>(&self);
    self.whenTold = nullptr;
  };
  raw->notifierReferenceNew();
  object = nullptr;
  ASSERT_EQ(object.ptr(), raw);
  object = nullptr;
  EXPECT_THAT(events, ElementsAre("told", "told"));
  raw->notifierReferenceDel();
}

TEST_F(PtrInterfaceTest, OutlivesTheTellingWhenItsLastObserverLetsGoMeanwhile) {
  raw->whenTold = [this](Observed& self) {
    self.notifierReferenceDel();
    events.push_back("let go");
  };
  raw->notifierReferenceNew();
  object = nullptr;
  EXPECT_THAT(events, ElementsAre("told", "let go", "object gone"));
}

TEST_F(PtrInterfaceTest, AuditFindsMoreObserversThanReferences) {
  EXPECT_EQ(raw->moxAuditErrors(0), 0U);
  EXPECT_EQ(raw->auditErrors(0), 0U);
  raw->notifierReferenceNew();
  raw->notifierReferenceNew();
  raw->referenceDel();
  raw->referenceDel();  // one too many
  EXPECT_EQ(raw->moxAuditErrors(0), 1U);
  raw->referenceNew();
  raw->referenceNew();
  raw->notifierReferenceDel();
  raw->notifierReferenceDel();
}

TEST_F(PtrInterfaceTest, FlagsAreIndependentAndOffAtFirst) {
  EXPECT_FALSE(raw->hasNotificationActive());
  EXPECT_FALSE(raw->moxMarkedForDeletion());
  raw->hasNotificationActiveIs(true);
  EXPECT_TRUE(raw->hasNotificationActive());
  EXPECT_FALSE(raw->moxMarkedForDeletion());
  raw->moxMarkedForDeletionIs(true);
  raw->hasNotificationActiveIs(false);
  EXPECT_FALSE(raw->hasNotificationActive());
  EXPECT_TRUE(raw->moxMarkedForDeletion());
}

TEST_F(PtrInterfaceTest, HasNoTypeUnlessItSaysSo) {
  EXPECT_EQ(raw->fwkType(), nullptr);
}

}  // namespace
}  // namespace Mox
