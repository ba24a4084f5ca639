#include "agent/control/Connection.h"

#include <gmock/gmock.h>

#include "test/agent/support/Connected.h"

namespace Kest::Agent {
namespace {

using ::testing::ElementsAre;

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

TEST_F(ConnectionTest, RepliesGoTogetherUnlessARequestTakesLong) {
  Pair pair = connected();
  std::string const three = echo("x") + echo("x") + echo("x");
  std::string sent;  // how many replies had been sent at each request
  auto const countSent = [&] {
    sent += std::to_string(pair.client.received().size() / echoed("x").size());
  };
  onEcho = countSent;
  pair.client.send(three);
  rounds(1);
  EXPECT_EQ(sent, "000");
  EXPECT_EQ(pair.client.received(), echoed("x") + echoed("x") + echoed("x"));

  sent.clear();
  onEcho = [&] {
    countSent();
    time.advance(0.001);
  };
  pair.client.send(three);
  rounds(1);
  EXPECT_EQ(sent, "011");
}

TEST_F(ConnectionTest, AClientThatFloodsHoldsNobodyUp) {
  Pair flooding = connected();
  Pair other = connected();
  onEcho = [&] { time.advance(Turns::budget / 4); };
  std::string requests;
  for (int i = 0; i < 100; ++i) requests += echo("x");
  flooding.client.send(requests);
  rounds(1);
  EXPECT_EQ(served, 4);
  other.client.send(echo("y"));
  rounds(1);
  EXPECT_EQ(other.client.received(), echoed("y"));
  EXPECT_EQ(served, 8);
}

TEST_F(ConnectionTest, WhoMayChangeIsServedFirst) {
  std::vector<Pair> flooding;
  for (int i = 0; i < 20; ++i) {
    flooding.push_back(connected(false));
    for (int k = 0; k < 20; ++k) flooding.back().client.send(echo("x"));
  }
  onEcho = [&] { time.advance(Turns::budget); };
  rounds(3);
  Pair trusted = connected();
  trusted.client.send(echo("y"));
  rounds(2);
  EXPECT_EQ(trusted.client.received(), echoed("y"));
}

TEST_F(ConnectionTest, AReplyThatComesLaterKeepsTheOrderAndHoldsNobodyElseUp) {
  Pair waiting = connected();
  Pair other = connected();
  waiting.client.send("{\"verb\":\"later\",\"id\":7}\n" + echo("after"));
  other.client.send(echo("other"));
  rounds(5);
  EXPECT_EQ(waiting.client.received(), "");
  EXPECT_EQ(other.client.received(), echoed("other"));
  ASSERT_EQ(replies.size(), 1U);
  replies[0]("at last");
  rounds(1);
  EXPECT_EQ(waiting.client.received(),
            "{\"ok\":true,\"result\":\"at last\",\"id\":7}\n" + echoed("after"));
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

TEST_F(ConnectionTest, ALongerIdIsRefusedAndNotKept) {
  Pair pair = connected();
  auto const request = [](std::size_t bytes) {
    return R"({"verb":"echo","text":"x","id":")" + std::string(bytes - 2, 'i') + "\"}\n";
  };
  pair.client.send(request(Wire::longestId) + request(Wire::longestId + 1));
  rounds(1);
  std::string const longest(Wire::longestId - 2, 'i');
  EXPECT_EQ(pair.client.received(),
            R"({"ok":true,"result":"x","id":")" + longest + "\"}\n" +
                refused("expected an 'id' of at most 1024 bytes, found a longer one"));
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
  rounds(1);
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

TEST_F(ConnectionTest, WhatThereIsNoMemoryForCostsTheClientItsConnectionAlone) {
  for (std::string const request :
       {R"({"verb":"starve"})", R"({"verb":"pieces","count":0,"end":"starved"})",
        R"({"verb":"pieces","count":3,"end":"starved"})"}) {
    Pair starving = connected();
    Pair other = connected();
    starving.client.send(request + "\n" + echo("no more"));
    other.client.send(echo("on"));
    rounds(3);
    EXPECT_TRUE(isGone(starving)) << request;
    EXPECT_EQ(other.client.received(), echoed("on"));
  }
}

}  // namespace
}  // namespace Kest::Agent
