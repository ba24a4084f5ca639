#include "agent/control/Inbox.h"

#include <gtest/gtest.h>

namespace Kest::Agent {
namespace {

TEST(Inbox, LinesAndBytesComeOutAsTheyCameIn) {
  Inbox input;
  input.add("on");
  EXPECT_FALSE(input.hasLine());
  input.add("e\n\ntwo\nhalf");
  for (char const* line : {"one", "", "two"}) {
    ASSERT_TRUE(input.hasLine());
    EXPECT_EQ(input.line(), line);
    input.dropLine();
  }
  EXPECT_FALSE(input.hasLine());
  input.add("\nraw\nbytes\nlast\n");
  ASSERT_TRUE(input.hasLine());
  EXPECT_EQ(input.line(), "half");
  input.dropLine();
  EXPECT_TRUE(input.hasLine());
  input.drop(10);  // with a line end, which is none
  EXPECT_EQ(input.bytes(), "last\n");
  EXPECT_EQ(input.hasLine() ? input.line() : "none", "last");
  input.dropLine();
  EXPECT_TRUE(input.isEmpty());
}

TEST(Inbox, HoldsNothingOnceItIsEmpty) {
  std::size_t const idle = Inbox().held();
  Inbox input;
  input.add(std::string(100000, 'x') + "\n");
  EXPECT_GT(input.held(), 100000U);
  ASSERT_TRUE(input.hasLine());
  input.dropLine();
  EXPECT_EQ(input.held(), idle);
}

}  // namespace
}  // namespace Kest::Agent
