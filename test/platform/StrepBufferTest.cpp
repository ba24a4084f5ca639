#include "platform/mox/StrepBuffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

namespace Mox {
namespace {

TEST(StrepBufferTest, IsEmptyAtFirst) {
  StrepBuffer const text;
  EXPECT_EQ(text.view(), "");
  EXPECT_TRUE(text.string().empty());
}

TEST(StrepBufferTest, KeepsItsTextWhenItGrows) {
  StrepBuffer text;
  std::string expected;
  while (expected.size() < 5 * StrepBuffer::shortBytes) {
    std::string const more = std::to_string(expected.size()) + ' ';
    text.append(more);
    expected += more;
    ASSERT_EQ(text.view(), expected);
  }
  EXPECT_EQ(text.string(), expected);
}

TEST(StrepBufferTest, HasTheRoomThatIsAskedFor) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 200; ++i) {
    StrepBuffer text;
    std::string expected;
    for (int piece = 0; piece < 4; ++piece) {
      auto const room = static_cast<std::size_t>(random() % (2 * StrepBuffer::shortBytes));
      auto const used = static_cast<std::size_t>(random() % (room + 1));
      char* const out = text.room(room);
      std::memset(out, 'x', room);
      std::memset(out, 'a' + piece, used);
      text.endIs(out + used);
      expected.append(used, static_cast<char>('a' + piece));
      ASSERT_EQ(text.view(), expected);
    }
  }
}

TEST(StrepBufferTest, RoomThatIsNotUsedIsNoText) {
  StrepBuffer text;
  text.append("a");
  static_cast<void>(text.room(2 * StrepBuffer::shortBytes));
  text.append("b");
  EXPECT_EQ(text.view(), "ab");
}

}  // namespace
}  // namespace Mox
