#include "agent/control/Places.h"

#include <gtest/gtest.h>

#include "agent/wire/Protocol.h"

namespace Kest::Agent {
namespace {

constexpr Peer root{0, true};

Peer user(uid_t number) {
  return {number, false};
}

void fill(Places& places, Peer const& peer, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    ASSERT_EQ(places.refusal(peer), "") << i;
    places.take(peer);
  }
}

TEST(Places, AUserWhoMayNotChangeAnythingHasAFew) {
  Places places(Wire::mostConnections);
  fill(places, user(7), Wire::mostConnectionsOfUser);
  EXPECT_EQ(places.refusal(user(7)), "there are 64 connections of user 7 already: try again later");
  EXPECT_EQ(places.refusal(user(8)), "");
  EXPECT_EQ(places.refusal(root), "");
  places.giveBack(user(7));
  EXPECT_EQ(places.refusal(user(7)), "");
}

TEST(Places, AllUsersTogetherLeaveSomeForThoseWhoMay) {
  Places places(Wire::mostConnections);
  std::size_t const free = Wire::mostConnections - Wire::connectionsKept;
  for (std::size_t i = 0; i < free; ++i) fill(places, user(100 + static_cast<uid_t>(i)), 1);
  EXPECT_EQ(places.refusal(user(7)),
            "there are 968 connections of users who may only read already: try again later");
  fill(places, root, Wire::connectionsKept);
  EXPECT_EQ(places.refusal(root), "there are 1000 connections already: try again later");
  places.giveBack(user(100));
  EXPECT_EQ(places.refusal(root), "");
  EXPECT_EQ(places.refusal(user(7)), "");
}

TEST(Places, OfFewPlacesHalfAreKept) {
  Places places(10);
  fill(places, user(7), 5);
  EXPECT_EQ(places.refusal(user(8)),
            "there are 5 connections of users who may only read already: try again later");
  fill(places, root, 5);
}

TEST(Places, WhoMayChangeMayFillThemAll) {
  Places places(Wire::mostConnections);
  fill(places, root, Wire::mostConnections);
  EXPECT_EQ(places.refusal(user(7)), "there are 1000 connections already: try again later");
}

}  // namespace
}  // namespace Kest::Agent
