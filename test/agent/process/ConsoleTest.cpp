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
  Console const coloured(out, true, true);
  EXPECT_EQ(coloured.good("yes"), "\x1b[32myes\x1b[0m");
  EXPECT_EQ(coloured.bad("no"), "\x1b[31mno\x1b[0m");
  EXPECT_EQ(coloured.heading("port"), "\x1b[1mport\x1b[0m");
  Console const plain(out, true, false);
  EXPECT_EQ(plain.good("yes") + plain.bad("no") + plain.heading("port"), "yesnoport");
}

}  // namespace
}  // namespace Kest::Agent
