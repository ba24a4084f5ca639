#include <gmock/gmock.h>

#include "test/agent/support/Connected.h"

namespace Kest::Agent {
namespace {

/// Replies in pieces, and bytes that follow a request.
class LongAnswerTest : public Connected {
 protected:
  static std::string pieces(std::size_t count, std::string const& more = "") {
    return R"({"verb":"pieces","count":)" + std::to_string(count) + more + "}\n";
  }
  static std::string told(std::size_t count, std::string const& id = "") {
    std::string list;
    for (std::size_t i = 0; i < count; ++i) {
      list += (i == 0 ? "\"" : ",\"") + std::string(pieceBytes, 'x') + "\"";
    }
    return R"({"ok":true,"result":[)" + list + "]" + id + "}\n";
  }
  static std::string upload(std::string const& bytes, std::string const& more = "") {
    return R"({"verb":"upload","bytes":)" + bytes + more + "}\n";
  }
  static std::string counted(std::size_t bytes) {
    return R"({"ok":true,"result":)" + std::to_string(bytes) + "}\n";
  }
};

TEST_F(LongAnswerTest, AReplyInPiecesLooksLikeAnyOther) {
  Pair pair = connected();
  pair.client.send(pieces(0) + pieces(3, R"(,"id":[1])") + echo("next"));
  EXPECT_EQ(readAll(pair.client), told(0) + told(3, R"(,"id":[1])") + echoed("next"));
}

TEST_F(LongAnswerTest, ItIsMadeAsTheClientReads) {
  constexpr std::size_t count = 2000;
  Pair pair = connected(false);
  pair.client.send(pieces(count) + echo("next"));
  std::string all;
  std::size_t most = 0;
  for (std::size_t i = 0; i < 2 * count; ++i) {
    rounds(2);
    most = std::max(most, account.held());
    if (i % 4 == 0) all += pair.client.receivedSome(50000);  // slow, not silent
  }
  EXPECT_LT(most, std::size_t{400} << 10);
  EXPECT_TRUE(all + readAll(pair.client) == told(count) + echoed("next"));
}

TEST_F(LongAnswerTest, WhoReadsItSlowlyIsNotSilent) {
  Pair pair = connected(false);
  pair.client.send(pieces(1000));
  for (int times = 0; times < 4; ++times) {
    rounds(10);
    EXPECT_GT(pair.connection->silentAt(), Mox::now());
    time.advance(Wire::longestSilence - 1);
    while (!pair.client.receivedSome(50000).empty()) {
    }
  }
}

TEST_F(LongAnswerTest, ARoundDoesAsMuchOfItAsThereIsTimeFor) {
  Pair pair = connected();
  Pair other = connected();
  pair.client.send(pieces(5));
  onEcho = [&] { time.advance(Turns::budget); };
  other.client.send(echo("1") + echo("2") + echo("3"));
  rounds(2);  // no more than a reply to the other in either
  EXPECT_EQ(served, 3);
  EXPECT_EQ(pair.client.received(), told(1).substr(0, told(1).size() - 3));
}

TEST_F(LongAnswerTest, EventsWaitForItsEnd) {
  Pair pair = connected();
  pair.connection->watch();
  pair.client.send(pieces(100));
  for (int i = 0; i < 3; ++i) {
    rounds(1);
    pair.connection->event("{\"event\":" + std::to_string(i) + "}\n");
  }
  EXPECT_EQ(readAll(pair.client), told(100) + "{\"event\":0}\n{\"event\":1}\n{\"event\":2}\n");
}

TEST_F(LongAnswerTest, BeforeTheFirstPieceItMayBeRefusedOrComeLater) {
  Pair pair = connected();
  pair.client.send(pieces(0, R"(,"end":"refused","id":1)") + pieces(0, R"(,"end":"later")") +
                   echo("next"));
  EXPECT_EQ(readAll(pair.client),
            R"({"ok":false,"error":{"kind":"busy","message":"not now"},"id":1})"
            "\n");
  replies.at(1)("at last");
  EXPECT_EQ(readAll(pair.client), echoed("at last") + echoed("next"));
}

TEST_F(LongAnswerTest, AClientThatLeavesWithinItIsGone) {
  Pair pair = connected();
  pair.client.send(pieces(1000));
  rounds(5);
  pair.client.close();
  rounds(2);
  EXPECT_TRUE(isGone(pair));
}

TEST_F(LongAnswerTest, BytesThatFollowARequestGoToItHoweverTheyCome) {
  Pair pair = connected();
  std::string const bytes = "{\"verb\":\"echo\"}\n\n{";  // never taken for requests
  std::string const all = upload(std::to_string(bytes.size()), R"(,"id":7)") + bytes + echo("next");
  std::string const expected =
      R"({"ok":true,"result":)" + std::to_string(bytes.size()) + ",\"id\":7}\n" + echoed("next");
  pair.client.send(all);
  EXPECT_EQ(readAll(pair.client), expected);
  for (char const byte : all) {
    pair.client.send({&byte, 1});
    rounds(1);
  }
  EXPECT_EQ(readAll(pair.client), expected);
  pair.client.send(upload("0") + upload("2", R"(,"end":"pieces")") + "xx" + echo("next"));
  EXPECT_EQ(readAll(pair.client), counted(0) + told(2) + echoed("next"));
}

TEST_F(LongAnswerTest, TheyAreNeverInMemoryAsAWhole) {
  Pair pair = connected();
  constexpr std::size_t bytes = std::size_t{20} << 20;
  pair.client.send(upload(std::to_string(bytes)));
  std::string const block(std::size_t{64} << 10, 'b');
  std::size_t most = 0;
  for (std::size_t sent = 0; sent < bytes;) {
    sent += pair.client.sendSome(std::string_view(block).substr(0, bytes - sent));
    rounds(1);
    most = std::max(most, account.held());
  }
  EXPECT_EQ(readAll(pair.client), counted(bytes));
  EXPECT_LT(most, std::size_t{64} << 10);
}

TEST_F(LongAnswerTest, AfterARefusalTheRestIsSkipped) {
  Pair pair = connected();
  std::string const bytes = "!" + std::string(100000, '!') + "\n";
  std::string const announced = std::to_string(bytes.size());
  pair.client.send(upload(announced) + bytes.substr(0, 1));
  std::string const refusal = R"({"ok":false,"error":{"kind":"file","message":"a '!'"}})"
                              "\n";
  EXPECT_EQ(readAll(pair.client), refusal);  // at once
  sendAll(pair.client, bytes.substr(1) + R"({"verb":"refuse","bytes":)" + announced + "}\n" +
                           bytes + echo("next"));
  EXPECT_EQ(readAll(pair.client),
            R"({"ok":false,"error":{"kind":"path","message":"not there","suggestion":"here"}})"
            "\n" +
                echoed("next"));
}

TEST_F(LongAnswerTest, TheyCountIntoTheLengthOfAReadersRequest) {
  Pair pair = connected(false);
  std::size_t const most = Wire::longestRequest - upload("65500").size() + 1;
  sendAll(pair.client, upload(std::to_string(most)) + std::string(most, 'b'));
  EXPECT_EQ(readAll(pair.client), counted(most));
  pair.client.send(upload(std::to_string(most + 1)));
  EXPECT_EQ(readAll(pair.client),
            refused("expected a request of at most 65536 bytes, found a longer one"));
  EXPECT_TRUE(isGone(pair));
}

TEST_F(LongAnswerTest, WhatIsNoNumberOfBytesIsRefused) {
  Pair pair = connected();
  pair.client.send(upload("-1") + upload("1.5") + upload("\"1\""));
  EXPECT_EQ(readAll(pair.client),
            refused("expected a number of bytes as 'bytes', found number") +
                refused("expected a number of bytes as 'bytes', found number") +
                refused("expected a number of bytes as 'bytes', found string"));
}

TEST_F(LongAnswerTest, BytesThatDoNotAllComeAreIgnored) {
  Pair pair = connected();
  pair.client.send(upload("3") + "xx");
  pair.client.halfClose();
  EXPECT_EQ(readAll(pair.client), "");
  EXPECT_TRUE(isGone(pair));
}

}  // namespace
}  // namespace Kest::Agent
