#include "platform/mox/Ptr.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "test/platform/Journaled.h"

namespace Mox {
namespace {

using Test::Events;
using Test::Journaled;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Link : public Journaled {
 public:
  using Journaled::Journaled;
  Ptr<Link> next;
};

class Special : public Link {
 public:
  using Link::Link;
};

class PtrTest : public ::testing::Test {
 protected:
  Events events;
  Ptr<Link> link{new Link(events, "first")};
};

TEST_F(PtrTest, IsNullByDefault) {
  Ptr<Link> const none;
  EXPECT_FALSE(none);
  EXPECT_TRUE(none == nullptr);
  EXPECT_EQ(none, Ptr<Link>(nullptr));
  EXPECT_TRUE(link);
  EXPECT_FALSE(link == nullptr);
}

TEST_F(PtrTest, CopiesShareAndMovesHandOver) {
  Ptr<Link> copy = link;
  EXPECT_EQ(link->references(), 2U);
  Ptr<Link> const moved = std::move(copy);
  EXPECT_EQ(copy, nullptr);
  EXPECT_EQ(moved, link);
  EXPECT_EQ(link->references(), 2U);
}

TEST_F(PtrTest, AssigningReleasesWhatWasHeld) {
  link = Ptr<Link>(new Link(events, "second"));
  EXPECT_THAT(events, ElementsAre("first gone"));
  link = nullptr;
  EXPECT_THAT(events, ElementsAre("first gone", "second gone"));
}

TEST_F(PtrTest, AssigningItselfChangesNothing) {
  Ptr<Link> const& same = link;
  link = same;
  EXPECT_EQ(link->references(), 1U);
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(PtrTest, AssigningFromWhatOnlyItHoldsKeepsThat) {
  link->next = Ptr<Link>(new Link(events, "second"));
  link = link->next;
  EXPECT_THAT(events, ElementsAre("first gone"));
  EXPECT_EQ(link->name(), "second");
}

TEST_F(PtrTest, WidensToABaseAndToConst) {
  Ptr<Special> const special(new Special(events, "special"));
  Ptr<Link const> const wide = special;
  EXPECT_EQ(wide, special);
  EXPECT_EQ(special->references(), 2U);
  static_assert(!std::is_convertible_v<Ptr<Link>, Ptr<Special>>);
  static_assert(!std::is_convertible_v<Ptr<Link const>, Ptr<Link>>);
}

TEST_F(PtrTest, CastNarrowsToWhatTheObjectIs) {
  Ptr<Link> const special(new Special(events, "special"));
  EXPECT_EQ(ptrCast<Special>(special), special);
  EXPECT_EQ(ptrCast<Special>(link), nullptr);
  EXPECT_EQ(ptrCast<Special>(Ptr<Link>()), nullptr);
  EXPECT_EQ(special->references(), 1U);
}

}  // namespace
}  // namespace Mox
