#include <gmock/gmock.h>

#include "agent/wire/Protocol.h"
#include "test/agent/support/Connected.h"

namespace Kest::Agent {
namespace {

using ::testing::AllOf;
using ::testing::Ge;
using ::testing::Le;

class ConnectionBoundsTest : public Connected {
 protected:
  /// A request of so many bytes, without its newline.
  static std::string requestOf(std::size_t bytes) {
    std::string request = R"({"verb":"echo","text":"long","pad":""})";
    request.insert(request.size() - 2, bytes - request.size(), 'p');
    return request;
  }

  /// A request with so many names and values.
  static std::string requestWith(std::size_t values) {
    std::string request = R"({"verb":"echo","text":"x","list":[)";
    for (std::size_t rest = values - 8; rest > 0; --rest) request += "0,";
    return request + "0]}\n";
  }

  static std::string event(int number, std::size_t bytes) {
    std::string line = R"({"event":)" + std::to_string(number) + R"(,"pad":""})";
    line.insert(line.size() - 2, bytes - line.size() - 1, 'p');
    return line + "\n";
  }
};

TEST_F(ConnectionBoundsTest, ARequestHasALongestLengthThatDependsOnWhoAsks) {
  struct Bound {
    bool mayChange;
    std::size_t longest;
  };
  for (Bound const& row :
       {Bound{false, Wire::longestRequest}, Bound{true, Wire::longestTrustedRequest}}) {
    Pair pair = connected(row.mayChange);
    sendAll(pair.client, requestOf(row.longest) + "\n" + echo("next"));
    EXPECT_EQ(readAll(pair.client), echoed("long") + echoed("next"));
    sendAll(pair.client, requestOf(row.longest + 1) + "\n");
    EXPECT_EQ(readAll(pair.client),
              refused("expected a request of at most " + std::to_string(row.longest) +
                      " bytes, found a longer one"));
    EXPECT_TRUE(isGone(pair));
  }
  EXPECT_EQ(served, 4);
}

TEST_F(ConnectionBoundsTest, ALineWithoutAnEndIsRefusedAsSoonAsItIsTooLong) {
  Pair pair = connected(false);
  sendAll(pair.client, std::string(Wire::longestRequest, '['));
  EXPECT_EQ(readAll(pair.client), "");
  pair.client.send("[");
  EXPECT_EQ(readAll(pair.client),
            refused("expected a request of at most 65536 bytes, found a longer one"));
  EXPECT_TRUE(isGone(pair));
}

TEST_F(ConnectionBoundsTest, ABombOfBracketsCostsAnErrorOnly) {
  Pair pair = connected();
  sendAll(pair.client, std::string(Wire::longestTrustedRequest, '[') + "\n" + echo("on"));
  EXPECT_EQ(readAll(pair.client),
            refused("expected at most 16 nested arrays and objects, found more") + echoed("on"));
}

TEST_F(ConnectionBoundsTest, SoDoManyMembers) {
  Pair pair = connected();
  sendAll(pair.client, requestWith(Wire::mostRequestValues));
  EXPECT_EQ(readAll(pair.client), echoed("x"));
  std::string const tooMany = refused("expected at most 256 names and values, found more");
  sendAll(pair.client, requestWith(Wire::mostRequestValues + 1));
  EXPECT_EQ(readAll(pair.client), tooMany);
  for (char const* member : {R"("":0,)", R"("":{},)", "0,"}) {
    std::string bomb = member == std::string("0,") ? R"({"id":[)" : "{";
    while (bomb.size() < Wire::longestTrustedRequest - 10) bomb += member;
    sendAll(pair.client, bomb + "\n");
    EXPECT_EQ(readAll(pair.client), tooMany);
  }
}

TEST_F(ConnectionBoundsTest, AClientThatNeverReadsIsServedNoMoreAndHoldsNobodyUp) {
  Pair stalled = connected();
  Pair other = connected();
  // A block of requests asks for far more than the client may leave unread.
  std::string const request = "{\"verb\":\"times\",\"count\":1000}\n";
  std::string flood;
  while (flood.size() < std::size_t{1} << 20) flood += request;
  std::size_t sent = 0;
  for (int i = 0; i < 200; ++i) {
    sent += stalled.client.sendSome(std::string_view(flood).substr(sent));
    rounds(1);
  }
  int const servedThen = served;
  EXPECT_THAT(stalled.connection->share(),
              AllOf(Ge(std::size_t{64} << 10), Le(std::size_t{256} << 10)));
  EXPECT_LT(sent, flood.size() / 2);
  other.client.send(echo("on"));
  rounds(100);
  EXPECT_EQ(other.client.received(), echoed("on"));
  EXPECT_EQ(served, servedThen + 1);
  EXPECT_FALSE(isGone(stalled));

  std::size_t const whole = sent / request.size();
  std::string expected;
  for (std::size_t i = 0; i < whole; ++i) expected += echoed(std::string(1000, 'x'));
  EXPECT_TRUE(readAll(stalled.client) == expected);
}

TEST_F(ConnectionBoundsTest, AWatcherThatDoesNotReadLosesEventsAndIsToldHowMany) {
  Pair pair = connected();
  pair.connection->watch();
  constexpr int count = 200;
  constexpr std::size_t bytes = 10000;
  for (int i = 0; i < count; ++i) {
    pair.connection->event(event(i, bytes));
    rounds(1);
  }
  EXPECT_LE(pair.connection->share(), 5 * Wire::mostWaitingEvents);

  std::string const got = readAll(pair.client);
  int const kept = static_cast<int>(got.size() / bytes);
  EXPECT_GE(kept, static_cast<int>(Wire::mostWaitingEvents / bytes));
  EXPECT_LT(kept, count / 2);
  std::string expected;
  for (int i = 0; i < kept; ++i) expected += event(i, bytes);
  expected += R"({"event":"lost","count":)" + std::to_string(count - kept) + "}\n";
  EXPECT_TRUE(got == expected) << got.substr(got.size() - 100);

  pair.connection->event(event(count, 100));
  pair.client.send(echo("on"));
  rounds(2);
  EXPECT_EQ(pair.client.received(), event(count, 100) + echoed("on"));
}

TEST_F(ConnectionBoundsTest, AnEventThatNoRoomIsEnoughForIsLostAtOnce) {
  Pair pair = connected();
  pair.connection->watch();
  pair.connection->event(event(0, Wire::mostWaitingEvents + 1));
  rounds(1);
  pair.connection->event(event(1, 100));
  rounds(1);
  EXPECT_EQ(pair.client.received(), "{\"event\":\"lost\",\"count\":1}\n" + event(1, 100));
}

TEST_F(ConnectionBoundsTest, AnEventThatThereIsNoMemoryForIsLostAndCounted) {
  Pair pair = connected();
  pair.connection->watch();
  pair.connection->loseEvent();
  rounds(1);
  EXPECT_EQ(pair.client.received(), "{\"event\":\"lost\",\"count\":1}\n");
}

TEST_F(ConnectionBoundsTest, AWatcherThatLeavesBehindABacklogIsGone) {
  Pair pair = connected();
  pair.connection->watch();
  for (int i = 0; i < 200; ++i) {
    pair.connection->event(event(i, 10000));
    rounds(1);
  }
  pair.client.close();
  rounds(2);
  EXPECT_TRUE(isGone(pair));
}

TEST_F(ConnectionBoundsTest, EventsDoNotKeepAWatcherFromAsking) {
  Pair setting = connected();
  Pair watching = connected();
  watching.connection->watch();
  onEcho = [&] {
    if (served % 2 != 0) watching.connection->event("{}\n");
  };
  for (int i = 0; i < 3; ++i) {  // both ask in every round
    setting.client.send(echo("set"));
    watching.client.send(echo("asked"));
    rounds(1);
    EXPECT_EQ(watching.client.received(), "{}\n" + echoed("asked"));
  }
}

TEST_F(ConnectionBoundsTest, MemoryIsCountedAndGivenBack) {
  Pair pair = connected();
  std::size_t const idle = account.held();
  sendAll(pair.client, requestOf(100000));
  rounds(10);
  EXPECT_GT(account.held(), idle + 100000);
  pair.client.send("\n");
  rounds(1);
  EXPECT_EQ(readAll(pair.client), echoed("long"));
  EXPECT_EQ(account.held(), idle);
  std::string const times = "{\"verb\":\"times\",\"count\":1000000}\n";
  pair.client.send(times);
  rounds(1);
  EXPECT_GT(account.held(), idle + 700000);
  readAll(pair.client);
  EXPECT_EQ(account.held(), idle);
  pair.client.send("{\"verb\":\"pieces\",\"count\":1000}\n");
  rounds(3);
  EXPECT_GT(account.held(), idle + 16384);
  pair.client.close();
  Pair uploading = connected();
  uploading.client.send("{\"verb\":\"upload\",\"bytes\":2,\"held\":700000}\nx");
  rounds(2);
  pair.connection.reset();
  EXPECT_GE(account.held(), idle + 700000);
  uploading.client.close();
  rounds(2);
  uploading.connection.reset();
  EXPECT_EQ(account.held(), 0U);
}

TEST_F(ConnectionBoundsTest, WhoIsSentAwayIsToldWhyUnlessItIsWithinAReply) {
  Pair quiet = connected();
  Pair reading = connected();
  reading.client.send("{\"verb\":\"times\",\"count\":1000000}\n");
  rounds(1);
  for (Pair* const pair : {&quiet, &reading}) {
    pair->connection->dismiss("go");
    EXPECT_TRUE(isGone(*pair));
    pair->connection.reset();
  }
  EXPECT_TRUE(quiet.client.isEnded());
  EXPECT_EQ(quiet.client.received(), R"({"ok":false,"error":{"kind":"busy","message":"go"}})"
                                     "\n");
  std::string const cut = readAll(reading.client);
  EXPECT_EQ(cut.find('\n'), cut.npos);
}

}  // namespace
}  // namespace Kest::Agent
