#include <gmock/gmock.h>

#include "agent/wire/Protocol.h"
#include "test/agent/control/Connected.h"

namespace Kest::Agent {
namespace {

using ::testing::AllOf;
using ::testing::Ge;
using ::testing::Le;

class ConnectionBoundsTest : public Connected {
 protected:
  /// Sends everything while the loop runs.
  void sendAll(Client const& client, std::string_view bytes) {
    while (!bytes.empty()) {
      bytes.remove_prefix(client.sendSome(bytes));
      rounds(1);
    }
  }

  /// Reads while the loop runs, until nothing more comes: a whole request may need some rounds.
  std::string readAll(Client& client) {
    std::string all;
    for (int quiet = 0; quiet < 20; ++quiet) {
      rounds(1);
      std::string const more = client.received();
      if (!more.empty()) quiet = 0;
      all += more;
    }
    return all;
  }

  /// A request of so many bytes, without its newline.
  static std::string requestOf(std::size_t bytes) {
    std::string request = R"({"verb":"echo","text":"long","pad":""})";
    request.insert(request.size() - 2, bytes - request.size(), 'p');
    return request;
  }

  static std::string event(int number, std::size_t bytes) {
    std::string line = R"({"event":)" + std::to_string(number) + R"(,"pad":""})";
    line.insert(line.size() - 2, bytes - line.size() - 1, 'p');
    return line + "\n";
  }
};

constexpr char const* tooLong =
    R"({"ok":false,"error":{"kind":"request","message":)"
    R"("expected a request of at most 1048576 bytes, found a longer one"}})"
    "\n";

TEST_F(ConnectionBoundsTest, TheLongestRequestIsServed) {
  Pair pair = connected();
  sendAll(pair.client, requestOf(Wire::longestRequest) + "\n" + echo("next"));
  EXPECT_EQ(readAll(pair.client), echoed("long") + echoed("next"));
}

TEST_F(ConnectionBoundsTest, ALongerOneIsRefusedAndEndsTheConnection) {
  Pair pair = connected();
  sendAll(pair.client, requestOf(Wire::longestRequest + 1) + "\n");
  EXPECT_EQ(readAll(pair.client), tooLong);
  EXPECT_TRUE(isGone(pair));
  EXPECT_EQ(served, 0);
}

TEST_F(ConnectionBoundsTest, ALineWithoutAnEndIsRefusedAsSoonAsItIsTooLong) {
  Pair pair = connected();
  sendAll(pair.client, std::string(Wire::longestRequest, '['));
  EXPECT_EQ(readAll(pair.client), "");
  pair.client.send("[");
  EXPECT_EQ(readAll(pair.client), tooLong);
  EXPECT_TRUE(isGone(pair));
}

TEST_F(ConnectionBoundsTest, ABombOfBracketsCostsAnErrorOnly) {
  Pair pair = connected();
  sendAll(pair.client, std::string(Wire::longestRequest, '[') + "\n" + echo("on"));
  EXPECT_EQ(readAll(pair.client), R"({"ok":false,"error":{"kind":"request","message":)"
                                  R"("expected at most 16 nested arrays and objects, found more"}})"
                                  "\n" +
                                      echoed("on"));
}

TEST_F(ConnectionBoundsTest, AClientThatNeverReadsIsServedNoMoreAndHoldsNobodyUp) {
  Pair stalled = connected();
  Pair other = connected();
  std::string const request =
      "{\"verb\":\"times\",\"count\":10000}" + std::string(1000, ' ') + "\n";
  std::string flood;
  while (flood.size() < Wire::mostUnreadOutput) flood += request;
  std::size_t sent = 0;
  for (int i = 0; i < 200; ++i) {
    sent += stalled.client.sendSome(std::string_view(flood).substr(sent));
    rounds(1);
  }
  int const servedThen = served;
  EXPECT_THAT(stalled.connection->unread(),
              AllOf(Ge(std::size_t{100000}), Le(Wire::mostUnreadOutput / 8)));
  EXPECT_LT(sent, flood.size() / 2);
  other.client.send(echo("on"));
  rounds(100);
  EXPECT_EQ(other.client.received(), echoed("on"));
  EXPECT_EQ(served, servedThen + 1);
  EXPECT_FALSE(isGone(stalled));

  std::size_t const whole = sent / request.size();
  std::string expected;
  for (std::size_t i = 0; i < whole; ++i) expected += echoed(std::string(10000, 'x'));
  EXPECT_TRUE(readAll(stalled.client) == expected);
}

TEST_F(ConnectionBoundsTest, AReplyBeyondTheBoundEndsTheConnection) {
  Pair pair = connected();
  pair.client.send("{\"verb\":\"times\",\"count\":" +
                   std::to_string(Wire::mostUnreadOutput + Wire::longestRequest) + "}\n");
  rounds(1);
  EXPECT_TRUE(isGone(pair));
  EXPECT_EQ(pair.connection->unread(), 0U);
}

TEST_F(ConnectionBoundsTest, AWatcherThatDoesNotReadLosesEventsAndIsToldHowMany) {
  Pair pair = connected();
  pair.connection->watch();
  constexpr int count = 200;
  constexpr std::size_t bytes = 50000;
  for (int i = 0; i < count; ++i) pair.connection->event(event(i, bytes));
  EXPECT_THAT(pair.connection->unread(),
              AllOf(Ge(Wire::mostUnreadOutput - bytes), Le(Wire::mostUnreadOutput)));

  std::string const got = readAll(pair.client);
  int const kept = static_cast<int>(got.size() / bytes);
  EXPECT_GE(kept, static_cast<int>(Wire::mostUnreadOutput / bytes));
  std::string expected;
  for (int i = 0; i < kept; ++i) expected += event(i, bytes);
  expected += R"({"event":"lost","count":)" + std::to_string(count - kept) + "}\n";
  EXPECT_TRUE(got == expected) << got.substr(got.size() - 100);

  pair.connection->event(event(count, 100));
  pair.client.send(echo("on"));
  rounds(1);
  EXPECT_EQ(pair.client.received(), event(count, 100) + echoed("on"));
}

TEST_F(ConnectionBoundsTest, AnEventThatNoRoomIsEnoughForIsLostAtOnce) {
  Pair pair = connected();
  pair.connection->watch();
  pair.connection->event(event(0, Wire::mostUnreadOutput + 1));
  pair.connection->event(event(1, 100));
  EXPECT_EQ(pair.client.received(), "{\"event\":\"lost\",\"count\":1}\n" + event(1, 100));
}

TEST_F(ConnectionBoundsTest, AWatcherThatLeavesBehindABacklogIsGone) {
  Pair pair = connected();
  pair.connection->watch();
  for (int i = 0; i < 200; ++i) pair.connection->event(event(i, 50000));
  pair.client.close();
  rounds(2);
  EXPECT_TRUE(isGone(pair));
}

TEST_F(ConnectionBoundsTest, EventsDoNotKeepAWatcherFromAsking) {
  Pair setting = connected();
  Pair watching = connected();
  ASSERT_LT(setting.connection->fd(), watching.connection->fd());
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

}  // namespace
}  // namespace Kest::Agent
