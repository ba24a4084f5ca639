#include "agent/process/Console.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Kest::Agent {
namespace {

TEST(Console, WritesLinesAndNoProgressWithoutATerminal) {
  std::ostringstream out;
  Console console(out, false, false);
  console.progress("ports", 1, 4, "+ switchPort et1");
  console.line("one");
  console.progress("ports", 2, 4, "+ switchPort et2");
  console.line("");
  EXPECT_EQ(out.str(), "one\n\n");
}

TEST(Console, RewritesProgressInPlaceOnATerminal) {
  std::ostringstream out;
  Console console(out, true, false);
  console.progress("ports", 0, 4, "+ device fap0");
  console.progress("ports", 1, 4, "+ switchPort et2");
  console.line("done");
  console.line("more");
  console.progress("ports", 4, 4, "~ nativeVlan et1 1 -> 2");
  console.progress("ports", 0, 0, "~ sliceId 'a'");
  EXPECT_EQ(out.str(),
            "ports [........................] 0/4  + device fap0"
            "\r\x1b[K"
            "ports [######..................] 1/4  + switchPort et2"
            "\r\x1b[K"
            "done\nmore\n"
            "ports [########################] 4/4  ~ nativeVlan et1 1 -> 2"
            "\r\x1b[K"
            "ports [########################] 0/0  ~ sliceId 'a'");
}

TEST(Console, ColoursOnlyWhenItMay) {
  std::ostringstream out;
  EXPECT_EQ(Console(out, true, true).marked("no", Text::Mark::bad), "\x1b[31mno\x1b[0m");
  EXPECT_EQ(Console(out, true, false).marked("no", Text::Mark::bad), "no");
}

}  // namespace
}  // namespace Kest::Agent
