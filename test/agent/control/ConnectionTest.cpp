#include "agent/control/Connection.h"

#include <gmock/gmock.h>

#include "test/agent/control/Connected.h"

namespace Kest::Agent {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using ConnectionTest = Connected;

TEST_F(ConnectionTest, ARequestMayBeSplitAnywhere) {
  Pair pair = connected();
  std::string const request = echo("caf\xc3\xa9");
  for (std::size_t split = 1; split < request.size(); ++split) {
    pair.client.send(request.substr(0, split));
    rounds(2);
    ASSERT_EQ(pair.client.received(), "") << split;
    pair.client.send(request.substr(split));
    rounds(1);
    ASSERT_EQ(pair.client.received(), echoed("caf\xc3\xa9")) << split;
  }
}

TEST_F(ConnectionTest, ARequestMayComeByteByByte) {
  Pair pair = connected();
  for (char const byte : echo("a") + echo("b")) {
    pair.client.send({&byte, 1});
    rounds(1);
  }
  EXPECT_EQ(pair.client.received(), echoed("a") + echoed("b"));
}

TEST_F(ConnectionTest, OneOfManyRequestsIsServedARound) {
  Pair pair = connected();
  pair.client.send(echo("1") + echo("2") + echo("3"));
  for (char const* reply : {"1", "2", "3"}) {
    rounds(1);
    EXPECT_EQ(pair.client.received(), echoed(reply));
  }
  rounds(2);
  EXPECT_EQ(pair.client.received(), "");
}

TEST_F(ConnectionTest, AClientThatFloodsHoldsNobodyUp) {
  Pair flooding = connected();
  Pair other = connected();
  std::string requests;
  for (int i = 0; i < 1000; ++i) requests += echo("x");
  flooding.client.send(requests);
  rounds(3);
  other.client.send(echo("y"));
  rounds(1);
  EXPECT_EQ(other.client.received(), echoed("y"));
  EXPECT_EQ(served, 5);
}

TEST_F(ConnectionTest, AReplyThatComesLaterKeepsTheOrderAndHoldsNobodyElseUp) {
  Pair waiting = connected();
  Pair other = connected();
  waiting.client.send("{\"verb\":\"later\",\"id\":7}\n" + echo("behind"));
  other.client.send(echo("other"));
  rounds(5);
  EXPECT_EQ(waiting.client.received(), "");
  EXPECT_EQ(other.client.received(), echoed("other"));
  ASSERT_EQ(replies.size(), 1U);
  replies[0]("at last");
  rounds(1);
  EXPECT_EQ(waiting.client.received(),
            "{\"ok\":true,\"result\":\"at last\",\"id\":7}\n" + echoed("behind"));
}

TEST_F(ConnectionTest, NothingIsReadWhileARequestIsUnanswered) {
  Pair pair = connected();
  pair.client.send("{\"verb\":\"later\"}\n");
  rounds(1);
  std::string const bytes(1U << 16U, ' ');
  while (pair.client.sendSome(bytes) > 0) {
  }
  rounds(10);
  EXPECT_EQ(pair.client.sendSome(bytes), 0U);
}

TEST_F(ConnectionTest, TheIdComesBackWhateverItIs) {
  Pair pair = connected();
  for (std::string const id : {"null", "true", "7", "-1.5", "18446744073709551615", "\"a\\u0000b\"",
                               "[1,{\"a\":[]}]", "{\"z\":1,\"a\":2}"}) {
    pair.client.send(R"({"verb":"echo","text":"x","id":)" + id + "}\n");
    pair.client.send(R"({"verb":"refuse","id":)" + id + "}\n");
    rounds(2);
    EXPECT_THAT(
        pair.client.lines(),
        ElementsAre(
            R"({"ok":true,"result":"x","id":)" + id + "}",
            R"({"ok":false,"error":{"kind":"path","message":"not there","suggestion":"here"},"id":)" +
                id + "}"));
  }
}

TEST_F(ConnectionTest, WhatServingThrowsIsAnInternalErrorAndTheConnectionLivesOn) {
  Pair pair = connected();
  pair.client.send("{\"verb\":\"fail\"}\n" + echo("on"));
  rounds(2);
  EXPECT_EQ(pair.client.received(),
            R"({"ok":false,"error":{"kind":"internal","message":"out of order"}})"
            "\n" +
                echoed("on"));
}

TEST_F(ConnectionTest, AClientThatSendsNoMoreGetsItsRepliesThenTheEnd) {
  Pair pair = connected();
  pair.client.send("{\"verb\":\"later\"}\n" + echo("last"));
  pair.client.halfClose();
  rounds(5);
  EXPECT_FALSE(pair.client.isEnded());
  replies.at(0)("first");
  rounds(5);
  EXPECT_TRUE(isGone(pair));
  pair.connection.reset();
  EXPECT_TRUE(pair.client.isEnded());
  EXPECT_EQ(pair.client.received(), echoed("first") + echoed("last"));
}

TEST_F(ConnectionTest, HalfARequestAtTheEndIsNobodys) {
  Pair pair = connected();
  pair.client.send(echo("whole") + R"({"verb":"echo","text":"half"})");
  pair.client.halfClose();
  rounds(5);
  EXPECT_TRUE(isGone(pair));
  EXPECT_EQ(pair.client.received(), echoed("whole"));
  EXPECT_EQ(served, 1);
}

TEST_F(ConnectionTest, AReplyToAClientThatHasLeftIsDropped) {
  Pair pair = connected();
  Pair destroyed = connected();
  pair.client.send("{\"verb\":\"later\"}\n");
  destroyed.client.send("{\"verb\":\"later\"}\n");
  rounds(1);
  pair.client.close();
  destroyed.connection.reset();
  ASSERT_EQ(replies.size(), 2U);
  for (auto const& reply : replies) reply("nobody");
  EXPECT_TRUE(isGone(pair));
  EXPECT_TRUE(destroyed.client.isEnded());
  EXPECT_EQ(destroyed.client.received(), "");
}

TEST_F(ConnectionTest, IdleClientsCostNoRounds) {
  Pair pair = connected();
  pair.client.send(echo("x"));
  rounds(3);
  bool hasRun = false;
  loop.later([&] { hasRun = true; });
  loop.runOnce(Mox::never);  // would return before if work were put off
  EXPECT_TRUE(hasRun);
  pair.client.close();
  loop.runOnce(Mox::never);  // the end of the input wakes it
  rounds(1);
  EXPECT_TRUE(isGone(pair));
}

TEST_F(ConnectionTest, TheClientIsWhoItsCredentialsSay) {
  Pair pair = connected();
  EXPECT_EQ(pair.connection->user(), geteuid());
  EXPECT_TRUE(pair.connection->mayChange());
}

}  // namespace
}  // namespace Kest::Agent
