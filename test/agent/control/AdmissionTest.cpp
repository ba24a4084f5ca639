#include "agent/control/Admission.h"

#include <gtest/gtest.h>

#include "agent/wire/Protocol.h"

namespace Kest::Agent {
namespace {

constexpr Peer root{0, true};

Peer user(uid_t number) {
  return {number, false};
}

void fill(Admission& admission, Peer const& peer, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    ASSERT_EQ(admission.refusal(peer), "") << i;
    admission.admit(peer);
  }
}

TEST(Admission, AUserWhoMayNotChangeAnythingHasAFew) {
  Admission admission(Wire::mostConnections);
  fill(admission, user(7), Wire::mostConnectionsOfUser);
  EXPECT_EQ(admission.refusal(user(7)),
            "there are 64 connections of user 7 already: try again later");
  EXPECT_EQ(admission.refusal(user(8)), "");
  EXPECT_EQ(admission.refusal(root), "");
  admission.leave(user(7));
  EXPECT_EQ(admission.refusal(user(7)), "");
}

TEST(Admission, AllUsersTogetherLeaveSomeForThoseWhoMay) {
  Admission admission(Wire::mostConnections);
  std::size_t const free = Wire::mostConnections - Wire::connectionsKept;
  for (std::size_t i = 0; i < free; ++i) fill(admission, user(100 + static_cast<uid_t>(i)), 1);
  EXPECT_EQ(admission.refusal(user(7)),
            "there are 968 connections of users who may only read already: try again later");
  fill(admission, root, Wire::connectionsKept);
  EXPECT_EQ(admission.refusal(root), "there are 1000 connections already: try again later");
  admission.leave(user(100));
  EXPECT_EQ(admission.refusal(root), "");
  EXPECT_EQ(admission.refusal(user(7)), "");
}

TEST(Admission, OfFewConnectionsHalfAreKept) {
  Admission admission(10);
  fill(admission, user(7), 5);
  EXPECT_EQ(admission.refusal(user(8)),
            "there are 5 connections of users who may only read already: try again later");
  fill(admission, root, 5);
}

TEST(Admission, WhoMayChangeMayFillThemAll) {
  Admission admission(Wire::mostConnections);
  fill(admission, root, Wire::mostConnections);
  EXPECT_EQ(admission.refusal(user(7)), "there are 1000 connections already: try again later");
}

}  // namespace
}  // namespace Kest::Agent
